#include "tests/ombra/display/virtualdesktop.h"

#include "tests/ombra/display/xconnection.h"

#include <QFile>

#include <X11/Xatom.h>
#include <X11/extensions/Xrandr.h>
#include <algorithm>
#include <csignal>

namespace vantrel::test {

namespace {

constexpr int patience = 20000; // milliseconds
constexpr const char* program = "/usr/lib/xorg/Xorg";

constexpr const char* configuration = R"(
Section "ServerFlags"
  Option "AutoAddDevices" "false"
  Option "AutoAddGPU" "false"
  Option "DontVTSwitch" "true"
EndSection
Section "Device"
  Identifier "card"
  Driver "dummy"
  VideoRam 65536
EndSection
Section "Monitor"
  Identifier "monitor"
  HorizSync 5-1000
  VertRefresh 5-200
  Modeline "640x360" 17.19 640 648 712 752 360 363 368 381
  Modeline "480x270" 12.00 480 488 536 720 270 273 278 333
EndSection
Section "Screen"
  Identifier "screen"
  Device "card"
  Monitor "monitor"
  DefaultDepth 24
  SubSection "Display"
    Depth 24
    Modes "640x360" "480x270"
    Virtual 2048 1024
  EndSubSection
EndSection
)";

} // namespace

struct VirtualDesktop::Connection : XConnection
{
    using XConnection::XConnection;
};

VirtualDesktop::VirtualDesktop() = default;

VirtualDesktop::~VirtualDesktop()
{
    end();
}

bool VirtualDesktop::start()
{
    QFile file(m_folder.filePath(QStringLiteral("xorg.conf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(configuration) < 0)
        return false;
    file.close();
    m_server.setStandardErrorFile(m_folder.filePath(QStringLiteral("errors")));
    m_server.start(QLatin1String(program),
                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-config"),
                    file.fileName(), QStringLiteral("-logfile"), m_folder.filePath(QStringLiteral("log")),
                    QStringLiteral("-noreset"), QStringLiteral("-novtswitch"), QStringLiteral("-sharevts"),
                    QStringLiteral("-keeptty"), QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    while (!m_server.canReadLine()) {
        if (!m_server.waitForReadyRead(patience)) {
            m_trouble =
                QStringLiteral("no X server with several screens runs here: ") + m_server.errorString();
            return false;
        }
    }
    m_name = u':' + QString::fromLatin1(m_server.readLine().trimmed());
    m_connection = std::make_unique<Connection>(m_name);
    return m_connection->display && light(0, "640x360", {0, 0});
}

QString VirtualDesktop::outputName(int output) const
{
    return QStringLiteral("DUMMY%1").arg(output);
}

bool VirtualDesktop::light(int output, const char* mode, QPoint at)
{
    ::Display* display = m_connection->display;
    XRRScreenResources* all = XRRGetScreenResources(display, m_connection->root());
    RRMode id = None;
    for (int i = 0; i < all->nmode; ++i) {
        if (QByteArray(all->modes[i].name) == mode)
            id = all->modes[i].id;
    }
    RROutput which = all->outputs[output];
    bool isDone = id != None || !*mode;
    if (isDone && id != None)
        XRRAddOutputMode(display, which, id);
    XRRSetScreenSize(display, m_connection->root(), 2 * screen.width(), screen.height(), 340, 100);
    isDone = isDone &&
             XRRSetCrtcConfig(display, all, all->crtcs[output], CurrentTime, at.x(), at.y(), id, RR_Rotate_0,
                              id == None ? nullptr : &which, id == None ? 0 : 1) == RRSetConfigSuccess;
    XRRFreeScreenResources(all);
    XRRFreeScreenResources(XRRGetScreenResources(display, m_connection->root())); // has it look anew
    XSync(display, False);
    return isDone;
}

void VirtualDesktop::setEdid(int output, const QByteArray& edid)
{
    ::Display* display = m_connection->display;
    XRRScreenResources* all = XRRGetScreenResourcesCurrent(display, m_connection->root());
    XRRChangeOutputProperty(display, all->outputs[output], XInternAtom(display, "EDID", False), XA_INTEGER, 8,
                            PropModeReplace, reinterpret_cast<const unsigned char*>(edid.constData()),
                            int(edid.size()));
    XRRFreeScreenResources(all);
    XSync(display, False);
}

QString VirtualDesktop::modeOf(int output) const
{
    ::Display* display = m_connection->display;
    XRRScreenResources* all = XRRGetScreenResourcesCurrent(display, m_connection->root());
    XRRCrtcInfo* crtc = XRRGetCrtcInfo(display, all, all->crtcs[output]);
    const QString size = QStringLiteral("%1x%2+%3").arg(crtc->width).arg(crtc->height).arg(crtc->x);
    XRRFreeCrtcInfo(crtc);
    XRRFreeScreenResources(all);
    return size;
}

void VirtualDesktop::hang(bool isHanging)
{
    ::kill(pid_t(m_server.processId()), isHanging ? SIGSTOP : SIGCONT);
}

void VirtualDesktop::end()
{
    m_connection.reset();
    m_server.terminate();
    m_server.waitForFinished();
}

unsigned long VirtualDesktop::windowAt(QPoint at) const
{
    ::Window window = None;
    int x = 0, y = 0;
    XTranslateCoordinates(m_connection->display, m_connection->root(), m_connection->root(), at.x(), at.y(),
                          &x, &y, &window);
    return window;
}

void VirtualDesktop::moveWindow(QPoint at, QPoint to)
{
    XMoveWindow(m_connection->display, windowAt(at), to.x(), to.y());
    XSync(m_connection->display, False);
}

bool VirtualDesktop::takesKeys(QPoint at) const
{
    ::Display* display = m_connection->display;
    const ::Window window = windowAt(at);
    ::Window focus = None;
    int revert = 0, count = 0;
    XGetInputFocus(display, &focus, &revert);
    XWMHints* hints = XGetWMHints(display, window);
    bool takes = window == None || focus == window || !hints || !(hints->flags & InputHint) || hints->input;
    XFree(hints);
    Atom* protocols = nullptr;
    if (XGetWMProtocols(display, window, &protocols, &count)) {
        takes =
            takes || std::count(protocols, protocols + count, XInternAtom(display, "WM_TAKE_FOCUS", False));
        XFree(protocols);
    }
    return takes;
}

QImage VirtualDesktop::grab(const QRect& area) const
{
    const auto before = XSetErrorHandler([](::Display*, XErrorEvent*) { return 0; });
    QImage picture = m_connection->grab(area);
    XSetErrorHandler(before);
    if (picture.isNull()) { // beyond the desktop as it is now
        picture = QImage(area.size(), QImage::Format_RGB32);
        picture.fill(Qt::magenta);
    }
    return picture;
}

} // namespace vantrel::test
