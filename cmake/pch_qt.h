// Precompiled for the framework: what nearly every file of it includes anyway.
#pragma once

#include <QtCore/QtCore>
#include <QtGui/QtGui>
#include <QtNetwork/QtNetwork>
#include <QtWidgets/QtWidgets>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>
