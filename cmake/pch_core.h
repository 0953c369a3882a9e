// Precompiled for the rooms without widgets: what nearly every file of them includes anyway.
#pragma once

#include <QtCore/QtCore>
#include <QtGui/QtGui>
#include <QtNetwork/QtNetwork>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>
