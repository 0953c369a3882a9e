#pragma once

#include "common/command/libraryeditcommand.h"

#include <QMetaType>

#include <functional>
#include <memory>

namespace vantrel::test {

/// A command that takes a server for granted.
template <typename Command>
class Online : public Command
{
protected:
    bool hasApi() const override { return true; }
};

/// Makes a command and initialises it for a library.
using Make = std::function<std::unique_ptr<LibraryEditCommand>(const MediaLibrary*, bool& ok)>;

template <typename Command, typename... Args>
Make make(Args... args)
{
    return [=](const MediaLibrary* library, bool& ok) {
        auto command = std::make_unique<Online<Command>>();
        ok = command->init(library, args...);
        return command;
    };
}

} // namespace vantrel::test

Q_DECLARE_METATYPE(vantrel::test::Make)
