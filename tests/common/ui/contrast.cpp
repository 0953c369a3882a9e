#include "common/media/models/playlist/playlistmodel.h"
#include "common/playback/levelmeter.h"
#include "common/playback/seekslider.h"
#include "common/playback/takebutton.h"
#include "common/playback/volumefader.h"
#include "common/playback/volumeslider.h"
#include "common/qml/qmlmanager.h"
#include "common/ui/gallery/gallerywindow.h"
#include "common/ui/style/stylesheet.h"
#include "common/ui/toolkit/colorbox.h"
#include "common/ui/toolkit/iconbutton.h"
#include "common/views/playlist/playlistview.h"
#include "common/views/slotdelegate.h"
#include "common/views/slotlistview.h"
#include "tests/common/ui/testsettings.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QQuickItem>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QScrollArea>
#include <QStyleOptionButton>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace vantrel;

namespace {

constexpr double leastForText = 4.5;
constexpr double leastForDrawings = 3.0;

double luminance(QRgb colour)
{
    const auto linear = [](int value) {
        const double share = value / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

/// 1 to 21, as the accessibility guidelines for web content count it.
double contrast(QRgb a, QRgb b)
{
    const double first = luminance(a), second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QRgb mostFrequent(const QImage& image)
{
    QHash<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    QRgb found = 0;
    int most = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        if (it.value() > most) {
            found = it.key();
            most = it.value();
        }
    }
    return found;
}

double strongest(const QImage& image, QRgb background)
{
    double best = 1;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            best = std::max(best, contrast(image.pixel(x, y), background));
    }
    return best;
}

/// How well what is drawn stands out from what it is drawn on.
double contrastIn(const QImage& image)
{
    return strongest(image, mostFrequent(image));
}

/// The same at the worst place along a track: no stretch of it may vanish.
double trackContrast(const QImage& image, Qt::Orientation along)
{
    const bool isFlat = along == Qt::Horizontal;
    const int length = isFlat ? image.width() : image.height();
    const QRgb background = mostFrequent(image.copy(0, 0, isFlat ? length : 1, isFlat ? 1 : length));
    double worst = 21;
    for (int at = length / 8; at < length * 7 / 8; ++at) {
        const QRect slice = isFlat ? QRect(at, 0, 1, image.height()) : QRect(0, at, image.width(), 1);
        worst = std::min(worst, strongest(image.copy(slice), background));
    }
    return worst;
}

} // namespace

/// Every text of the gallery can be read, and every drawing and track be seen, in the dark and by tired eyes:
/// measured on the pixels that are painted.
class Contrast : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QMLManager::instance()->deinitialize(); }

    void galleryCanBeRead_data()
    {
        QTest::addColumn<FontSize>("size");
        QTest::newRow("medium") << FontSize::Medium;
        QTest::newRow("huge") << FontSize::Huge;
    }
    void galleryCanBeRead()
    {
        QFETCH(FontSize, size);
        const test::TestSettings settings;
        settings->setValue(TEXT_SIZE, QVariant::fromValue(size));
        StyleSheet::apply(*qApp);
        GalleryWindow gallery;
        gallery.show();
        QVERIFY(QTest::qWaitForWindowExposed(&gallery));
        QWidget* page = gallery.findChild<QScrollArea*>()->widget();
        QTRY_VERIFY(page->sizeHint().height() > 1000);
        page->resize(page->sizeHint());
        m_faults.clear();
        m_texts = m_drawings = m_tracks = m_declared = m_rows = 0;
        m_endActions.clear();
        QHash<QWidget*, QImage> windows;
        const QWidgetList widgets = QApplication::allWidgets();
        for (QWidget* widget : widgets) {
            QWidget* window = page->isAncestorOf(widget) ? page : widget->window();
            if (window != page && !isPictured(window))
                continue;
            if (!windows.contains(window))
                windows.insert(window, window->grab().toImage().convertToFormat(QImage::Format_RGB32));
            if (widget->isVisibleTo(window))
                look(widget, window, windows.value(window));
        }
        QVERIFY2(m_faults.isEmpty(), qPrintable(m_faults.join(u'\n')));
        QVERIFY2(m_texts > 250 && m_drawings > 60 && m_tracks > 10,
                 qPrintable(QStringLiteral("%1 %2 %3").arg(m_texts).arg(m_drawings).arg(m_tracks)));
        QVERIFY2(m_declared >= 18, qPrintable(QString::number(m_declared)));
        QCOMPARE(m_endActions.size(), 2); // as words and as drawings
        QCOMPARE(m_rows, 3 * 5 + 2 * 3);  // of the panel and of cue lists
        qApp->setStyleSheet({});
    }

    void measuresAsTheGuidelinesDo()
    {
        QCOMPARE(contrast(qRgb(255, 255, 255), qRgb(0, 0, 0)), 21.0);
        QCOMPARE(qRound(contrast(qRgb(255, 255, 255), qRgb(0xf2, 0x71, 0x1c)) * 10), 29);
        QImage track(80, 10, QImage::Format_RGB32);
        track.fill(Qt::black);
        for (int x = 0; x < 80; ++x)
            track.setPixel(x, 5, qRgb(255, 255, 255));
        QCOMPARE(trackContrast(track, Qt::Horizontal), 21.0);
        track.setPixel(40, 5, qRgb(10, 10, 10));
        QVERIFY(trackContrast(track, Qt::Horizontal) < leastForDrawings);
    }

private:
    /// A window of its own whose picture stands on the page.
    static bool isPictured(const QWidget* window)
    {
        return window->inherits("vantrel::ZTDialog") || window->inherits("QMenu") ||
               window->inherits("vantrel::VolumeControlPopup");
    }

    /// An end action is a word where there is room, and a drawing where not.
    static bool showsWord(const QWidget* widget)
    {
        return widget->inherits("vantrel::EndActionButton") &&
               widget->property("class").toString() == QLatin1String("segment");
    }

    void expect(double found, double least, const QWidget* widget, const QString& text)
    {
        if (found < least)
            m_faults.append(QStringLiteral("%1 to 1: %2 %3 \"%4\" %5")
                                .arg(found, 0, 'f', 2)
                                .arg(QString::fromLatin1(widget->metaObject()->className()),
                                     widget->property("class").toString(), text,
                                     widget->isEnabled() ? QString() : QStringLiteral("(disabled)")));
    }

    void lookAtText(const QWidget* widget, const QImage& image, const QString& text)
    {
        if (text.trimmed().isEmpty() || image.isNull())
            return;
        ++m_texts;
        expect(contrastIn(image), leastForText, widget, text);
    }

    void look(QWidget* widget, QWidget* root, const QImage& window)
    {
        const QRect place(widget->mapTo(root, QPoint()), widget->size());
        const auto part = [&](const QRect& rect) {
            return window.copy(rect.translated(place.topLeft()).intersected(window.rect()));
        };
        const QRect inner = widget->rect().adjusted(3, 3, -3, -3);
        if (widget->inherits("vantrel::EndActionButton"))
            m_endActions.insert(showsWord(widget));
        if (const auto* label = qobject_cast<QLabel*>(widget))
            lookAtLabel(label, part);
        else if (qobject_cast<IconButton*>(widget) && !showsWord(widget))
            lookAtDrawing(widget, part(inner));
        else if (qobject_cast<ColorBox*>(widget))
            return; // shows a colour of the operator's
        else if (const auto* button = qobject_cast<QAbstractButton*>(widget))
            lookAtText(widget, part(inner), button->text());
        else if (const auto* edit = qobject_cast<QLineEdit*>(widget))
            lookAtText(widget, part(inner), edit->text().isEmpty() ? edit->placeholderText() : edit->text());
        else if (const auto* box = qobject_cast<QComboBox*>(widget); box && !box->isEditable())
            lookAtText(widget, part(inner), box->currentText());
        else if (const auto* menu = qobject_cast<QMenu*>(widget)) {
            for (QAction* action : menu->actions())
                lookAtText(menu, part(menu->actionGeometry(action)), action->text());
        } else if (const auto* view = qobject_cast<QQuickWidget*>(widget))
            lookAtDeclared(view, view->quickWindow()->contentItem(), part);
        else if (const auto* slotRows = qobject_cast<SlotListView*>(widget))
            lookAtSlots(slotRows, part);
        else if (const auto* cues = qobject_cast<PlaylistView*>(widget))
            lookAtCues(cues, part);
        const QRect whole = widget->rect();
        if (const auto* meter = qobject_cast<LevelMeter*>(widget); meter && meter->isMuted())
            lookAtText(widget, part(whole), QStringLiteral("MUTED"));
        else if (meter && meter->state() != LevelMeter::State::Blank)
            lookAtTrack(widget, part(whole), Qt::Horizontal);
        else if (qobject_cast<SeekSlider*>(widget))
            lookAtTrack(widget, part(whole), Qt::Horizontal);
        else if (qobject_cast<QProgressBar*>(widget))
            lookAtTrack(widget, part(whole.adjusted(0, -2, 0, 2)), Qt::Horizontal);
        else if (const auto* fader = qobject_cast<VolumeFader*>(widget)) // its value stands beside the groove
            lookAtTrack(widget, part(QRect(0, 0, fader->grooveEnd(), whole.height())), Qt::Horizontal);
        else if (const auto* slider = qobject_cast<QSlider*>(widget))
            lookAtTrack(widget, part(whole), slider->orientation());
    }

    template <typename Part>
    void lookAtLabel(const QLabel* label, Part part)
    {
        QRect shown = label->contentsRect();
        const QString name = label->objectName();
        if (name.startsWith(QLatin1String("TakeL")) || name.startsWith(QLatin1String("TakeP"))) {
            // Two labels share the place: the bar covers one as far as it uncovers the other.
            const auto* button = qobject_cast<TakeButton*>(label->parentWidget());
            const bool isTaken = !button;
            if (!button)
                button = qobject_cast<TakeButton*>(label->parentWidget()->parentWidget());
            const int edge = qRound(button->takeProgress() * label->width());
            shown = (isTaken ? QRect(0, 0, edge, label->height())
                             : QRect(edge, 0, label->width() - edge, label->height()))
                        .adjusted(4, label->height() / 3, -4, -label->height() / 3);
            if (shown.width() < label->width() / 3)
                return;
        }
        lookAtText(label, part(shown), label->text());
    }

    template <typename Part>
    void lookAtSlots(const SlotListView* view, Part part)
    {
        const auto* delegate = qobject_cast<SlotDelegate*>(view->itemDelegate());
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            const QModelIndex index = view->model()->index(row, 0);
            QStyleOptionViewItem option;
            option.initFrom(view);
            option.rect = view->visualRect(index);
            m_rows += view->viewport()->rect().contains(option.rect) ? 1 : 0;
            for (const QRect& place : delegate->textPlaces(option, index))
                lookAtText(view, part(place.translated(view->viewport()->pos())),
                           QStringLiteral("row %1").arg(row + 1));
        }
    }

    /// Each cell by itself: a bright one must not stand for a dim one.
    template <typename Part>
    void lookAtCues(const PlaylistView* view, Part part)
    {
        using Column = PlaylistModel;
        for (int row = 0; row < view->model()->rowCount(); ++row) {
            ++m_rows;
            for (const int column : {Column::NumberColumn, Column::MediaColumn, Column::DurationColumn,
                                     Column::TransitionDurationColumn}) {
                const QModelIndex index = view->model()->index(row, column);
                const QRect cell = view->visualRect(index).translated(view->viewport()->pos());
                if (!cell.isEmpty() && !index.data().toString().isEmpty())
                    lookAtText(view, part(cell.adjusted(4, 2, -4, -2)),
                               QStringLiteral("row %1, column %2").arg(row + 1).arg(column));
            }
        }
    }

    template <typename Part>
    void lookAtDeclared(const QQuickWidget* view, const QQuickItem* item, Part part)
    {
        if (!item->isVisible())
            return;
        const QString text = item->property("text").toString();
        if (!text.isEmpty() && (item->inherits("QQuickText") || item->inherits("QQuickTextInput"))) {
            ++m_declared;
            const QRectF inner = item->boundingRect().adjusted(2, 2, -2, -2);
            lookAtText(view, part(item->mapRectToScene(inner).toRect()), text);
        }
        for (const QQuickItem* child : item->childItems())
            lookAtDeclared(view, child, part);
    }

    void lookAtDrawing(const QWidget* widget, const QImage& image)
    {
        ++m_drawings;
        expect(contrastIn(image), leastForDrawings, widget, widget->accessibleName());
    }

    void lookAtTrack(const QWidget* widget, const QImage& image, Qt::Orientation along)
    {
        ++m_tracks;
        expect(trackContrast(image, along), leastForDrawings, widget, widget->toolTip());
    }

    QStringList m_faults;
    int m_texts = 0, m_drawings = 0, m_tracks = 0, m_declared = 0, m_rows = 0;
    QSet<bool> m_endActions; // looked at: whether they show words
};

HALCYRA_TEST(Contrast)
#include "contrast.moc"
