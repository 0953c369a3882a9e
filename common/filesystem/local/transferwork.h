#pragma once

#include "common/filesystem/local/copywork.h"
#include "common/filesystem/local/filejob.h"

#include <string>

namespace vantrel {

/// Copies or moves one item, with all that is in it, on a worker thread. A copy stands under a hidden name
/// until it is whole; nothing that is there already is touched unless the policy of the job says so.
class TransferWork
{
public:
    TransferWork(JobControl& control, bool isMove);

    /// To a path, or into it when it is a directory that is there. Tells its progress in bytes.
    JobResult run(const QString& from, const QString& to);

private:
    /// Where an item goes after a look at what is there.
    struct Place
    {
        std::string path;
        bool isReplacing = false;
        bool isMerging = false;
    };

    JobResult::Outcome transfer(const std::string& from, const std::string& to);
    /// Done when a place is found.
    JobResult::Outcome findPlace(const std::string& from, Place& place);
    JobResult::Outcome meet(const std::string& from, const struct stat& there, Place& place);
    JobResult::Outcome merge(const std::string& from, const std::string& to);
    JobResult::Outcome copy(const std::string& from, Place place);
    JobResult::Outcome settle(const std::string& from, const std::string& hidden, Place place);
    JobResult::Outcome removeSource(const std::string& from);
    bool lookAhead(const std::string& from, const std::string& to);
    JobResult::Outcome fail(const QString& sentence);
    JobResult::Outcome failCopy(int error);

    JobControl& m_control;
    CopyWork m_copy;
    bool m_isMove;
    bool m_isMeasured = false;
    std::string m_source;
    JobResult m_result;
};

} // namespace vantrel
