#pragma once

#include "ombra/display/connectionloss.h"
#include "ombra/display/painter.h"
#include "ombra/outputs/connector.h"

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <utility>

struct SDL_Window;

namespace vantrel::ombra {

/// Where on the machine something is shown.
struct Place
{
    std::string name;                 // of the output
    std::optional<ScreenArea> area{}; // of the desktop; nothing where there is none
    int screen = 0;                   // in the order of the machine, for want of an area
    bool isGuess = false;             // the last one serves where there are fewer screens
    double rate = 0;                  // pictures a second; 0 where unknown
    friend bool operator==(const Place&, const Place&) = default;
};

/// Whether one paints here, and not a driver that makes believe so. The thread that has SDL's video.
bool hasGraphicsCard(DesktopConnection& connection);

/// The window of a display, without borders over a whole screen or as one on a desktop, and its painter. It
/// takes no input but that it may be closed on a desktop. Screens makes and ends it; all else is for the
/// display's thread.
class Window
{
public:
    struct Wish
    {
        bool isFullScreen = false;
        Place place;
        std::string title;
        bool isByProcessor = false; // painted so, for want of a graphics card
    };
    /// Of a window. Closed: by the operator. Left: another one is to be opened, there or elsewhere. Moved:
    /// screens came or went. Lost: its desktop is gone.
    enum class Fate { Stays, Closed, Left, Moved, Lost };

    /// screen: as SDL counts; -1 for a place on a desktop of X, whatever SDL knows of it. The connection
    /// outlives the window.
    static std::unique_ptr<Window> create(const Wish& wish, int screen, DesktopConnection& connection,
                                          std::string* error);
    ~Window();
    Window(const Window&) = delete;
    unsigned id() const;
    void note(bool isClosed);
    void noteScreens() { m_seesOthers = true; }
    /// It lies on another screen than before.
    void noteMoved();
    void leave() { m_mustLeave = true; }

    /// Takes hold of the graphics card, if it is painted by that. False, and the reason, where that does not
    /// serve.
    bool begin(std::string* error);
    /// Whether a swap waits for the display, seen from a few of that picture; each time anew.
    void findBeat(const ShownMoment& moment, const Painter::Ground& ground);
    /// Whether the screen that it is on by now has another rate, for which the beat is to be found.
    bool takeMoved() { return m_isMoved.exchange(false); }
    /// Lets go of it: before the window is given back.
    void end();
    Painter& painter() { return *m_painter; }
    int screen() const { return m_screen; }
    double rate() const { return m_rate; } // pictures a second
    bool givesBeat() const { return m_givesBeat; }
    bool isSoftware() const { return m_isSoftware; }
    int width() const;  // pixels
    int height() const; // pixels
    Fate fate() const;
    /// Whether it is to be painted although its picture has not changed.
    bool takeExposed() { return m_isExposed.exchange(false); }
    void expose() { m_isExposed = true; }
    std::string description() const;

private:
    Window(const Wish& wish, int screen, DesktopConnection& connection);
    bool create(std::string* error);
    void findRate();

    const Wish m_wish;
    const int m_screen;
    DesktopConnection& m_connection;
    SDL_Window* m_window = nullptr;
    void* m_context = nullptr;
    std::atomic<double> m_rate{60};
    std::atomic<bool> m_isExposed{true}, m_isClosed{false}, m_seesOthers{false}, m_mustLeave{false},
        m_isMoved{false};

    // Of the display's thread:
    bool m_isSoftware = false;
    bool m_givesBeat = false;
    std::string m_renderer;
    std::unique_ptr<Painter> m_painter;
};

} // namespace vantrel::ombra
