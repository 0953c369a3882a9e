#pragma once

#include "common/session/settings/fontsize.h"

#include <QMap>
#include <QSize>

namespace vantrel {

/// How much room the channels have. ChannelWidget decides, and tells every part of both columns, so that they
/// always look alike: Wide shows all captions in full-size controls; Narrow drops the captions that a tooltip
/// can stand for, gives the media's name a line of its own and makes the controls one size smaller.
enum class ColumnStep { Wide, Narrow };

/// The least width of a channel's column, in pixels.
int columnWidth(ColumnStep step, FontSize size);
/// The width of the take controls between the columns, in pixels.
int takeWidth(ColumnStep step, FontSize size);

/// The width both columns and what is between them need, in pixels.
int channelsWidth(ColumnStep step, FontSize size);

/// The sides of the buttons, by text size: of the transport, of the footer and header, of the take's options.
const QMap<FontSize, QSize>& transportSizes(ColumnStep step);
const QMap<FontSize, QSize>& buttonSizes(ColumnStep step);
const QMap<FontSize, QSize>& takeOptionSizes(ColumnStep step);

} // namespace vantrel
