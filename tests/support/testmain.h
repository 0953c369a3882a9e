#pragma once

#include <QObject>

#include <functional>

namespace vantrel::test {

/// Registers a test class with the one main() of its executable. Use HALCYRA_TEST.
class Registration
{
public:
    Registration(const char* name, std::function<QObject*()> make);
};

/// Announces a log message of warning level or above that the running test provokes on purpose. Matching is
/// by substring; each call expects one message. A warning that nobody announced fails the test, and so does
/// an announced one that never came by the end of the test class.
void expectWarning(const QString& part);

/// Announces any number (also none) of messages that contain the text, for tests in which a peer dies at
/// random.
void allowWarnings(const QString& part);

/// How many times what is allowed in the release build work may take: a sanitizer slows it down.
#ifdef HALCYRA_SANITIZED
inline constexpr int slowness = 8;
#else
inline constexpr int slowness = 1;
#endif

} // namespace vantrel::test

/// Puts the class into this executable's run; stands once, at the end of the test's .cpp, before the moc
/// include.
#define HALCYRA_TEST(Class)                                                                                  \
    static const vantrel::test::Registration registration##Class(#Class, [] { return new Class; });
