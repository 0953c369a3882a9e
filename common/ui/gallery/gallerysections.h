#pragma once

class QWidget;

namespace vantrel::gallery {

// Each gives a page section with one family of widgets, a row for each kind and a column for each state.

QWidget* makeTexts(QWidget* parent);
QWidget* makeButtons(QWidget* parent);
QWidget* makeIconButtons(QWidget* parent);
QWidget* makeFields(QWidget* parent);
QWidget* makeChoices(QWidget* parent);
QWidget* makeBars(QWidget* parent);
QWidget* makePanels(QWidget* parent);
QWidget* makeShell(QWidget* parent);
QWidget* makeNotifications(QWidget* parent);
QWidget* makeTimes(QWidget* parent);
QWidget* makeChannelParts(QWidget* parent);
QWidget* makePictures(QWidget* parent);
QWidget* makeSliders(QWidget* parent);
QWidget* makeSounds(QWidget* parent);
QWidget* makeTakes(QWidget* parent);
QWidget* makeRows(QWidget* parent);
QWidget* makeWindows(QWidget* parent);
/// The controls of declarative views below the widgets that they are to look like.
QWidget* makeTwins(QWidget* parent);

} // namespace vantrel::gallery
