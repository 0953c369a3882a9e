// The peer of "player/cpu-two-previews": a bare Qt program that reads the preview stream and paints the
// pictures of both channels into two plain widgets, at the places and in the sizes that the application gives
// them.
#include <QApplication>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QTcpSocket>
#include <QWidget>
#include <QtEndian>

#include <cstdio>

namespace {

constexpr int headerSize = 40; // see tarn/preview/previewwire.h

class Picture : public QWidget
{
public:
    using QWidget::QWidget;
    void show(QImage image)
    {
        m_image = std::move(image);
        update();
    }

private:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::black);
        QRect area(QPoint(), m_image.size().scaled(size(), Qt::KeepAspectRatio));
        area.moveCenter(rect().center());
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(area, m_image);
        if (++painted() % 50 == 0) {
            std::printf("painted %d\n", painted());
            std::fflush(stdout);
        }
    }
    static int& painted()
    {
        static int count = 0;
        return count;
    }

    QImage m_image;
};

class Stream : public QTcpSocket
{
public:
    Stream(quint16 port, QHash<QByteArray, Picture*> pictures)
        : m_pictures(std::move(pictures))
    {
        connect(this, &QTcpSocket::readyRead, this, &Stream::read);
        connectToHost(QStringLiteral("127.0.0.1"), port);
    }

private:
    void read()
    {
        while (bytesAvailable() >= headerSize) {
            const QByteArray header = peek(headerSize);
            const auto number = [&](int at) { return qFromLittleEndian<quint32>(header.constData() + at); };
            if (bytesAvailable() < headerSize + qint64(number(32)) + number(36))
                return;
            skip(headerSize);
            const QByteArray source = QTcpSocket::read(number(32));
            const QByteArray pixels = QTcpSocket::read(number(36));
            const QImage image(reinterpret_cast<const uchar*>(pixels.constData()), int(number(8)),
                               int(number(12)), int(number(16)), QImage::Format_RGB888);
            if (Picture* picture = m_pictures.value(source))
                picture->show(image.convertToFormat(QImage::Format_RGB32));
        }
    }

    QHash<QByteArray, Picture*> m_pictures;
};

QRect rectOf(const char* text)
{
    const QList<QByteArray> parts = QByteArray(text).split(',');
    return parts.size() == 4 ? QRect(parts[0].toInt(), parts[1].toInt(), parts[2].toInt(), parts[3].toInt())
                             : QRect();
}

} // namespace

/// Arguments: the preview port, the rectangle of the window, and those of both pictures in it.
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    if (argc != 5)
        return 2;
    QWidget window;
    window.setGeometry(rectOf(argv[2]));
    Picture preview(&window), program(&window);
    preview.setGeometry(rectOf(argv[3]));
    program.setGeometry(rectOf(argv[4]));
    window.QWidget::show();
    Stream stream(static_cast<quint16>(atoi(argv[1])),
                  {{"/device/channels/0/preview", &preview}, {"/device/channels/0/program", &program}});
    return application.exec();
}
