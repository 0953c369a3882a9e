#pragma once

#include "common/filesystem/local/filejob.h"

namespace vantrel {

/// Makes a directory or an empty file; its parent must be there. With acceptsExisting a directory may be
/// there already. On a worker thread.
JobResult createItem(const QString& path, bool isDirectory, bool acceptsExisting);
/// Gives an item another name in its own directory; fails when there is one of that name. On a worker thread.
JobResult renameItem(const QString& path, const QString& newName, bool isDirectory);
/// A sentence that says why no item can have the name; empty when one can.
QString nameProblem(const QString& name);

} // namespace vantrel
