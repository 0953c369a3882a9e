// Giving up a command that is under way.
//
// How servers answer ABOR differs: at once, when nobody takes their data any more, twice, or with one more
// 150. A NOOP behind it has one answer everywhere, and what comes before that belongs to what was given up.
// It goes out on its own, since some read away all that comes with ABOR; where it was lost, a PWD is the next
// that cannot be mistaken.
#include "common/filesystem/ftp/qftppi.h"

#include <algorithm>
#include <utility>

namespace vantrel {

using namespace std::chrono_literals;

namespace {

constexpr auto abortPatience = 5s; // until both sides must be in step again
constexpr auto drainTime = 300ms;  // some servers hear ABOR only when nobody takes their data any more
constexpr auto quietTime = 250ms;  // for the first answer to ABOR
constexpr auto probeTime = 700ms;  // for that to NOOP

} // namespace

void QFtpPI::abort(const QString& why)
{
    m_pendingCommands.clear();
    if (m_abortState != AbortState::None || !m_isOpen || !m_isBusy)
        return;
    m_abortState = AbortState::AbortStarted;
    m_abortReason = why;
    m_abortReplies = 0;
    m_probe = Probe::None;
    const bool isOwnDue = m_state == Waiting && !m_hadPreliminary && !isTransfer();
    m_ownReplies = std::exchange(m_ahead, 0) + std::exchange(m_unheard, 0) + (isOwnDue ? 1 : 0);
    m_waitForDtpToConnect = m_waitForDtpToClose = false;
    m_rawCommand = m_isAsking = false;
    m_dtp.dropData();
    m_dtp.clearError();
    m_commandSocket.write("ABOR\r\n");
    m_watch.start(std::min<std::chrono::milliseconds>(abortPatience, m_patience));
    const bool isReceiving =
        m_currentCmd.startsWith(QLatin1String("RETR")) || m_currentCmd.startsWith(QLatin1String("LIST"));
    if (isReceiving && m_dtp.state() == QTcpSocket::ConnectedState)
        m_abortStep.start(drainTime);
    else
        stepAbort();
}

void QFtpPI::stepAbort()
{
    if (m_abortState == AbortState::AbortStarted) {
        m_dtp.abortConnection();
        dataConnectionGone();
    } else if (m_abortState == AbortState::WaitForAbortToFinish) {
        probe();
    }
}

void QFtpPI::dataConnectionGone()
{
    if (m_abortState != AbortState::AbortStarted)
        return;
    m_abortState = AbortState::WaitForAbortToFinish;
    if (m_abortReplies > 0)
        probe();
    else
        m_abortStep.start(quietTime);
    takeReplies();
    readyRead();
}

void QFtpPI::probe()
{
    if (m_probe == Probe::None) {
        m_probe = Probe::Noop;
        m_commandSocket.write("NOOP\r\n");
        m_abortStep.start(probeTime);
    } else if (m_probe == Probe::Noop) {
        m_probe = Probe::Pwd;
        m_commandSocket.write("PWD\r\n");
    }
}

bool QFtpPI::processAbortReply(int code)
{
    if (code / 100 == 1)
        return true;
    const bool isOwn = m_ownReplies > 0;
    m_ownReplies -= isOwn ? 1 : 0;
    if (!isOwn && ((m_probe == Probe::Noop && code == 200) || (m_probe == Probe::Pwd && code == 257))) {
        finishAbort();
        return true;
    }
    ++m_abortReplies;
    if (m_abortState == AbortState::WaitForAbortToFinish && m_probe == Probe::None)
        probe();
    return true;
}

void QFtpPI::finishAbort()
{
    m_abortState = AbortState::None;
    m_abortStep.stop();
    m_currentCmd.clear();
    m_state = Idle;
    watch();
    tellError(QFtp::UnknownError, std::exchange(m_abortReason, {}));
}

} // namespace vantrel
