#pragma once

#include <QByteArray>
#include <QProcess>

#include <optional>

namespace vantrel::test {

/// A window without widgets in a process of its own: the session of the application, its undo stack, and an
/// operator who does at random what the test tells. runEditWindow() is the other end.
class EditWindow
{
public:
    EditWindow(quint16 httpPort, quint16 linkPort, quint16 previewPort, quint32 seed);
    ~EditWindow();

    /// Sends a word and waits for its answer: "edit" (its mark, behind a "?" where it leaves none, and how
    /// many entries of keptList carry it), "undo" and "redo" (the mark of that edit), "settle" (waits for
    /// what is under way), "library" (its text, or nothing while something is under way), "told" (the titles
    /// of all that the operator was told), "done" (the marks of what the server has taken since the last
    /// time). Nothing when the process is gone or hangs.
    std::optional<QByteArray> ask(const QByteArray& word);

private:
    QProcess m_process;
};

/// Whether this process is to be such a window.
bool isEditWindow();
void runEditWindow();

} // namespace vantrel::test
