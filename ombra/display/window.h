#pragma once

#include "ombra/display/connectionloss.h"
#include "ombra/display/display.h"

#include <memory>
#include <string>

struct SDL_Window;

namespace vantrel::ombra {

/// The window of a display, without borders over a whole screen or as one on a desktop, and its painter. It
/// takes no input but that it may be closed on a desktop. The display's thread.
class Display::Window
{
public:
    /// Null, and the reason, where there is no display. Where there are fewer screens the last one serves,
    /// unless it must be this one.
    static std::unique_ptr<Window> open(Kind kind, int screen, bool isOnlyThis, const std::string& title,
                                        std::string* error);
    ~Window();

    Painter& painter() { return *m_painter; }
    int screen() const { return m_screen; }
    double rate() const { return m_rate; } // pictures a second
    bool givesBeat() const { return m_givesBeat; }
    bool isSoftware() const { return m_isSoftware; }
    int width() const;  // pixels
    int height() const; // pixels
    Fate handleEvents();
    /// Whether it is to be painted although its picture has not changed.
    bool takeExposed() { return std::exchange(m_isExposed, false); }
    std::string description() const;

private:
    Window() = default;
    bool create(Kind kind, int screen, bool isOnlyThis, const std::string& title, std::string* error);
    void findBeat();

    SDL_Window* m_window = nullptr;
    void* m_context = nullptr;
    bool m_hasVideo = false;
    bool m_isWindow = false;
    bool m_isSoftware = false;
    bool m_givesBeat = false;
    bool m_isExposed = true;
    DesktopConnection m_connection;
    int m_screen = 0;
    double m_rate = 60;
    std::string m_renderer;
    std::unique_ptr<Painter> m_painter;
};

} // namespace vantrel::ombra
