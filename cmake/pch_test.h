// Precompiled once for all test executables.
#pragma once

#include <QtCore/QtCore>
#include <QtGui/QtGui>
#include <QtNetwork/QtNetwork>
#include <QtTest/QtTest>
#include <QtWidgets/QtWidgets>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>
