#include "common/ui/gallery/gallerywindow.h"

#include "common/session/settings/configuration.h"
#include "common/ui/gallery/gallerysections.h"
#include "common/ui/style/colors.h"
#include "common/ui/toolkit/collapse.h"
#include "common/ui/toolkit/switchselect.h"
#include "common/ui/toolkit/ztlabel.h"

#include <QCoreApplication>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>

#include <array>

namespace vantrel {

namespace {

constexpr std::array sizes{FontSize::Small, FontSize::Medium, FontSize::Large, FontSize::Huge};

struct Section
{
    const char* title;
    QWidget* (*make)(QWidget*);
};

constexpr std::array sections{
    Section{"Texts", gallery::makeTexts},
    Section{"Buttons", gallery::makeButtons},
    Section{"Icons", gallery::makeIconButtons},
    Section{"Fields", gallery::makeFields},
    Section{"Choices", gallery::makeChoices},
    Section{"Bars and switches", gallery::makeBars},
    Section{"Panels", gallery::makePanels},
    Section{"Window", gallery::makeShell},
    Section{"Notifications", gallery::makeNotifications},
    Section{"Times", gallery::makeTimes},
    Section{"Channel", gallery::makeChannelParts},
    Section{"Pictures", gallery::makePictures},
    Section{"Seek bar", gallery::makeSliders},
    Section{"Sound", gallery::makeSounds},
    Section{"Take", gallery::makeTakes},
    Section{"Rows", gallery::makeRows},
    Section{"Dialogs and menus", gallery::makeWindows},
    Section{"Declarative views", gallery::makeTwins},
};

void setTextSize(FontSize size)
{
    if (Configuration* settings = configuration())
        settings->setValue(TEXT_SIZE, QVariant::fromValue(size));
}

} // namespace

GalleryWindow::GalleryWindow(QWidget* parent)
    : QWidget(parent)
    , m_area(new QScrollArea(this))
{
    setObjectName(QStringLiteral("Gallery"));
    setWindowTitle(tr("Halcyra: gallery"));
    setAttribute(Qt::WA_StyledBackground);
    QPalette dark = palette();
    dark.setColor(QPalette::Window, colors::getColor(colors::Slate_grey_900));
    setPalette(dark);
    setAutoFillBackground(true);

    auto* select = new SwitchSelect(this);
    select->setObjectNames(QStringLiteral("Gallery-text-size"));
    const std::array names{tr("Small"), tr("Medium"), tr("Large"), tr("Huge")};
    for (std::size_t i = 0; i < sizes.size(); ++i)
        select->addItem(names[i], static_cast<int>(sizes[i]));
    select->setValue(static_cast<int>(currentFontSize()));
    connect(select, &SwitchSelect::clicked, this,
            [](const QVariant& value) { setTextSize(static_cast<FontSize>(value.toInt())); });

    auto* bar = new QHBoxLayout;
    bar->addWidget(new ZTLabel(tr("Text size:"), this));
    bar->addWidget(select);
    bar->addStretch(1);
    m_area->setWidgetResizable(true);
    m_area->setWidget(createPage());
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(bar);
    layout->addWidget(m_area, 1);
    resize(1100, 900);
}

QWidget* GalleryWindow::createPage()
{
    auto* page = new QWidget(m_area);
    auto* layout = new QVBoxLayout(page);
    layout->setSpacing(12);
    for (const Section& section : sections) {
        auto* panel = new Collapse(QString::fromLatin1(section.title), page);
        panel->setContent(section.make(panel));
        layout->addWidget(panel);
    }
    layout->addStretch(1);
    return page;
}

QPixmap GalleryWindow::sheet()
{
    const FontSize before = currentFontSize();
    QList<QPixmap> pictures;
    QSize whole;
    for (const FontSize size : sizes) {
        setTextSize(size);
        // The style sheet and the pictures of dialogs follow in turns of their own.
        for (int turn = 0; turn < 3; ++turn)
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QWidget* page = m_area->widget();
        page->resize(page->sizeHint());
        pictures.append(page->grab());
        whole = {whole.width() + pictures.last().width(), qMax(whole.height(), pictures.last().height())};
    }
    setTextSize(before);
    QPixmap sheet(whole);
    sheet.fill(colors::getColor(colors::Slate_grey_900));
    QPainter painter(&sheet);
    int x = 0;
    for (const QPixmap& picture : pictures) {
        painter.drawPixmap(x, 0, picture);
        x += picture.width();
    }
    return sheet;
}

} // namespace vantrel
