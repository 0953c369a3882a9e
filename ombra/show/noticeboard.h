#pragma once

#include "tarn/scene/scene.h"

#include <map>
#include <string>

namespace vantrel::ombra {

/// What the operator must know of this server while it lasts: sentences, one for each matter, that every
/// window reads from the scene ("notice" of the system, one a line) and the log tells once. The thread of the
/// scene.
class NoticeBoard
{
public:
    explicit NoticeBoard(Scene& scene)
        : m_scene(scene)
    {
    }

    /// Puts a matter's sentence up; an empty one takes it down.
    void set(const std::string& matter, const std::string& sentence);

private:
    Scene& m_scene;
    std::map<std::string, std::string> m_sentences;
};

} // namespace vantrel::ombra
