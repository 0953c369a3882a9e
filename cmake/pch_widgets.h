// Precompiled for the rooms on the screen: what nearly every file of them includes anyway.
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
