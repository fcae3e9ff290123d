// A small X11 companion for the real-start test and the start-up measurement. It does what a
// user or a desktop would do on a bare X server without a window manager:
//
//   x11probe launch [--title T] [--timeout-ms N] -- program args...
//       starts the program and reports, on stdout, "pid <n>", "start_epoch_ms <ms>" and, with a
//       title, once a top-level window whose title contains T is mapped, "mapped_ms <ms since start>" and
//       "window <id>". It then stays the program's parent and exits with the program's exit code
//       (128 + signal when killed), so that a script can both time the window and see how the
//       program ended. Map events are read from the server as they come (no polling).
//   x11probe wait (--title T | --type TYPE) --state mapped|unmapped [--timeout-ms N]
//       waits until a top-level window with that title, or of that window type (the end of a
//       _NET_WM_WINDOW_TYPE name, e.g. POPUP_MENU), is viewable, or until none is; prints
//       "window <id> <x> <y> <width> <height>" for the one found.
//   x11probe close --title T
//       asks the viewable window with that title to close (WM_DELETE_WINDOW), as a title bar would.
//   x11probe tray
//       acts as the desktop's system tray: docks icons and prints "docked <id>" for each.
//   x11probe grab <file.png> [--title T] [--width W]
//       saves a screenshot of the whole screen (scaled down to W pixels wide, for documentation)
//       and prints "colours <n>": the distinct colours inside the window with that title, or on
//       the whole screen, counted before any scaling.
//
// Exit codes: 0 done, 1 bad use, 2 timed out, 3 no display, otherwise the launched program's.

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QScreen>
#include <QSet>
#include <QVector>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <sys/select.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int BadUse = 1;
constexpr int TimedOut = 2;
constexpr int NoDisplay = 3;

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

long long epochMs()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now().time_since_epoch()).count();
}

// Windows may vanish between an event and our question about them; such errors are expected.
int ignoreErrors(Display*, XErrorEvent*)
{
    return 0;
}

Display* openDisplay()
{
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        std::fprintf(stderr, "x11probe: cannot open display %s\n", std::getenv("DISPLAY") ? std::getenv("DISPLAY") : "");
        return nullptr;
    }
    XSetErrorHandler(ignoreErrors);
    return display;
}

std::string windowTitle(Display* display, Window window)
{
    const Atom netName = XInternAtom(display, "_NET_WM_NAME", False);
    const Atom utf8 = XInternAtom(display, "UTF8_STRING", False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    std::string title;
    if (XGetWindowProperty(display, window, netName, 0, 1024, False, utf8, &type, &format, &count, &after, &data)
            == Success
        && data) {
        title.assign(reinterpret_cast<char*>(data), count);
        XFree(data);
    }
    if (title.empty()) {
        char* name = nullptr;
        if (XFetchName(display, window, &name) && name) {
            title = name;
            XFree(name);
        }
    }
    return title;
}

bool isViewable(Display* display, Window window)
{
    XWindowAttributes attributes;
    return XGetWindowAttributes(display, window, &attributes) && attributes.map_state == IsViewable;
}

bool hasWindowType(Display* display, Window window, const std::string& type)
{
    const Atom property = XInternAtom(display, "_NET_WM_WINDOW_TYPE", False);
    const Atom wanted = XInternAtom(display, ("_NET_WM_WINDOW_TYPE_" + type).c_str(), False);
    Atom actual = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    bool found = false;
    if (XGetWindowProperty(display, window, property, 0, 32, False, XA_ATOM, &actual, &format, &count, &after, &data)
            == Success
        && data) {
        const auto* atoms = reinterpret_cast<const Atom*>(data);
        for (unsigned long i = 0; i < count; ++i)
            found = found || atoms[i] == wanted;
        XFree(data);
    }
    return found;
}

struct Match {
    std::string title;
    std::string type;
};

bool matches(Display* display, Window window, const Match& match)
{
    if (!match.title.empty() && windowTitle(display, window).find(match.title) == std::string::npos)
        return false;
    return match.type.empty() || hasWindowType(display, window, match.type);
}

// The viewable top-level window that matches, or None.
Window findViewable(Display* display, const Match& match)
{
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    Window found = None;
    if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count))
        return None;
    for (unsigned int i = 0; i < count && found == None; ++i) {
        if (isViewable(display, children[i]) && matches(display, children[i], match))
            found = children[i];
    }
    if (children)
        XFree(children);
    return found;
}

// Waits for the next X event up to the deadline; false when the time is up.
bool nextEvent(Display* display, XEvent* event, Clock::time_point deadline)
{
    while (!XPending(display)) {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()).count();
        if (left <= 0)
            return false;
        const int fd = ConnectionNumber(display);
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(fd, &readable);
        timeval timeout{static_cast<time_t>(left / 1000000), static_cast<suseconds_t>(left % 1000000)};
        if (select(fd + 1, &readable, nullptr, nullptr, &timeout) < 0 && errno != EINTR)
            return false;
    }
    XNextEvent(display, event);
    return true;
}

struct Options {
    std::string title;
    std::string type;
    std::string state = "mapped";
    int timeoutMs = 20000;
    int width = 0;
    std::vector<char*> command;
    std::vector<std::string> rest;
};

bool parseOptions(int argc, char** argv, int first, Options* options)
{
    for (int i = first; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--") {
            for (int j = i + 1; j < argc; ++j)
                options->command.push_back(argv[j]);
            break;
        }
        if ((arg == "--title" || arg == "--type" || arg == "--state" || arg == "--timeout-ms"
                || arg == "--width") && i + 1 < argc) {
            const std::string value = argv[++i];
            if (arg == "--title")
                options->title = value;
            else if (arg == "--type")
                options->type = value;
            else if (arg == "--state")
                options->state = value;
            else if (arg == "--width")
                options->width = std::atoi(value.c_str());
            else
                options->timeoutMs = std::atoi(value.c_str());
        } else if (arg.rfind("--", 0) == 0) {
            std::fprintf(stderr, "x11probe: unknown option %s\n", arg.c_str());
            return false;
        } else {
            options->rest.push_back(arg);
        }
    }
    return true;
}

int exitStatus(int status)
{
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return BadUse;
}

pid_t launchedChild = 0;

void forwardSignal(int signal)
{
    if (launchedChild > 0)
        kill(launchedChild, signal);
}

int launch(const Options& options)
{
    if (options.command.empty())
        return BadUse;
    Display* display = openDisplay();
    if (!display)
        return NoDisplay;
    // Without a window manager every top-level window is a child of the root: its map and
    // property changes reach us through the root's substructure and the window's own events.
    XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
    XSync(display, False);

    std::vector<char*> argv = options.command;
    argv.push_back(nullptr);
    std::fflush(stdout);
    const long long startEpoch = epochMs();
    const Clock::time_point start = Clock::now();
    const pid_t child = fork();
    if (child < 0)
        return BadUse;
    if (child == 0) {
        close(ConnectionNumber(display));
        execvp(argv[0], argv.data());
        std::perror("x11probe: exec");
        _exit(127);
    }
    launchedChild = child;
    std::signal(SIGTERM, forwardSignal);
    std::signal(SIGINT, forwardSignal);
    std::printf("pid %d\nstart_epoch_ms %lld\n", static_cast<int>(child), startEpoch);
    std::fflush(stdout);

    const Clock::time_point deadline = start + std::chrono::milliseconds(options.timeoutMs);
    Window mapped = None;
    int status = 0;
    bool ended = false;
    // Without a title nothing is watched: the program is only started and waited for.
    while (!options.title.empty() && mapped == None) {
        XEvent event;
        // Short slices, so that a program that ends before it shows a window is noticed.
        const bool got = nextEvent(display, &event, std::min(deadline, Clock::now() + std::chrono::milliseconds(50)));
        if (!got) {
            if (waitpid(child, &status, WNOHANG) == child) {
                ended = true;
                break;
            }
            if (Clock::now() >= deadline)
                break;
            continue;
        }
        Window candidate = None;
        if (event.type == CreateNotify) {
            XSelectInput(display, event.xcreatewindow.window, PropertyChangeMask);
        } else if (event.type == MapNotify) {
            candidate = event.xmap.window;
        } else if (event.type == PropertyNotify) {
            candidate = event.xproperty.window;
        }
        if (candidate != None && isViewable(display, candidate)
            && windowTitle(display, candidate).find(options.title) != std::string::npos) {
            const double elapsed = msSince(start);
            mapped = candidate;
            std::printf("mapped_ms %.1f\nwindow 0x%lx\n", elapsed, static_cast<unsigned long>(mapped));
            std::fflush(stdout);
        }
    }
    XCloseDisplay(display);
    if (!options.title.empty() && mapped == None && !ended)
        std::printf("timeout\n");
    std::fflush(stdout);
    if (!ended) {
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
    }
    const int code = exitStatus(status);
    std::printf("exit %d\n", code);
    std::fflush(stdout);
    return code;
}

int waitFor(const Options& options)
{
    if ((options.title.empty() && options.type.empty()) || (options.state != "mapped" && options.state != "unmapped"))
        return BadUse;
    Display* display = openDisplay();
    if (!display)
        return NoDisplay;
    const bool wantMapped = options.state == "mapped";
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(options.timeoutMs);
    for (;;) {
        const Window window = findViewable(display, Match{options.title, options.type});
        if ((window != None) == wantMapped) {
            XWindowAttributes attributes;
            if (window != None && XGetWindowAttributes(display, window, &attributes))
                std::printf("window 0x%lx %d %d %d %d\n", static_cast<unsigned long>(window), attributes.x,
                    attributes.y, attributes.width, attributes.height);
            XCloseDisplay(display);
            return 0;
        }
        if (Clock::now() >= deadline)
            break;
        usleep(20000);
    }
    XCloseDisplay(display);
    return TimedOut;
}

int closeWindow(const Options& options)
{
    if (options.title.empty())
        return BadUse;
    Display* display = openDisplay();
    if (!display)
        return NoDisplay;
    const Window window = findViewable(display, Match{options.title, std::string()});
    if (window == None) {
        XCloseDisplay(display);
        return TimedOut;
    }
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, window, False, NoEventMask, &event);
    XSync(display, False);
    XCloseDisplay(display);
    return 0;
}

// The freedesktop.org system tray protocol: own the tray selection of screen 0,
// announce it, and embed every icon window that asks to be docked.
int tray()
{
    Display* display = openDisplay();
    if (!display)
        return NoDisplay;
    const int screen = DefaultScreen(display);
    const Window root = RootWindow(display, screen);
    constexpr int IconSize = 24;
    constexpr int Slots = 4;
    const int width = IconSize * Slots;
    XSetWindowAttributes attributes{};
    attributes.background_pixel = 0x3c3c3c;
    attributes.override_redirect = True;
    const Window host = XCreateWindow(display, root, DisplayWidth(display, screen) - width, 0, width, IconSize, 0,
        CopyFromParent, InputOutput, CopyFromParent, CWBackPixel | CWOverrideRedirect, &attributes);
    XStoreName(display, host, "x11probe tray");
    XMapWindow(display, host);
    // A panel stays above the windows of programs; menus and tooltips (override-redirect) may
    // cover it, as they do on a desktop.
    XSelectInput(display, root, SubstructureNotifyMask);

    const std::string selectionName = "_NET_SYSTEM_TRAY_S" + std::to_string(screen);
    const Atom selection = XInternAtom(display, selectionName.c_str(), False);
    const Atom opcode = XInternAtom(display, "_NET_SYSTEM_TRAY_OPCODE", False);
    const Atom orientation = XInternAtom(display, "_NET_SYSTEM_TRAY_ORIENTATION", False);
    const Atom xembed = XInternAtom(display, "_XEMBED", False);
    const long horizontal = 0;
    XChangeProperty(display, host, orientation, XA_CARDINAL, 32, PropModeReplace,
        reinterpret_cast<const unsigned char*>(&horizontal), 1);
    XSetSelectionOwner(display, selection, host, CurrentTime);
    if (XGetSelectionOwner(display, selection) != host) {
        std::fprintf(stderr, "x11probe: another system tray owns %s\n", selectionName.c_str());
        return BadUse;
    }
    XEvent announce{};
    announce.xclient.type = ClientMessage;
    announce.xclient.window = root;
    announce.xclient.message_type = XInternAtom(display, "MANAGER", False);
    announce.xclient.format = 32;
    announce.xclient.data.l[0] = CurrentTime;
    announce.xclient.data.l[1] = static_cast<long>(selection);
    announce.xclient.data.l[2] = static_cast<long>(host);
    XSendEvent(display, root, False, StructureNotifyMask, &announce);
    XSync(display, False);
    std::printf("tray 0x%lx\n", static_cast<unsigned long>(host));
    std::fflush(stdout);

    constexpr long RequestDock = 0;
    constexpr long EmbeddedNotify = 0;
    int docked = 0;
    for (;;) {
        XEvent event;
        XNextEvent(display, &event);
        // A program raises its window when it shows it, after the map: restacking counts too.
        const bool mapped = event.type == MapNotify && event.xmap.window != host && !event.xmap.override_redirect;
        const bool restacked = event.type == ConfigureNotify && event.xconfigure.window != host
            && !event.xconfigure.override_redirect;
        if (mapped || restacked) {
            XRaiseWindow(display, host);
            XSync(display, False);
            continue;
        }
        if (event.type != ClientMessage || event.xclient.message_type != opcode
            || event.xclient.data.l[1] != RequestDock)
            continue;
        const Window icon = static_cast<Window>(event.xclient.data.l[2]);
        XReparentWindow(display, icon, host, IconSize * (docked % Slots), 0);
        XResizeWindow(display, icon, IconSize, IconSize);
        XEvent notify{};
        notify.xclient.type = ClientMessage;
        notify.xclient.window = icon;
        notify.xclient.message_type = xembed;
        notify.xclient.format = 32;
        notify.xclient.data.l[0] = CurrentTime;
        notify.xclient.data.l[1] = EmbeddedNotify;
        notify.xclient.data.l[3] = static_cast<long>(host);
        XSendEvent(display, icon, False, NoEventMask, &notify);
        XMapWindow(display, icon);
        XSync(display, False);
        ++docked;
        std::printf("docked 0x%lx\n", static_cast<unsigned long>(icon));
        std::fflush(stdout);
    }
}

// The rectangles of the viewable top-level windows stacked above the window.
QVector<QRect> windowsAbove(Display* display, Window window)
{
    QVector<QRect> rects;
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count))
        return rects;
    bool above = false;
    // Children come bottom first.
    for (unsigned int i = 0; i < count; ++i) {
        XWindowAttributes attributes;
        if (above && XGetWindowAttributes(display, children[i], &attributes) && attributes.map_state == IsViewable)
            rects.append(QRect(attributes.x, attributes.y, attributes.width, attributes.height));
        above = above || children[i] == window;
    }
    if (children)
        XFree(children);
    return rects;
}

// Saves the whole screen; counts the colours that the window with that title shows (not those of
// windows above it), or those of the whole screen.
int grab(int argc, char** argv, const std::string& file, const std::string& title, int width)
{
    QRect area;
    QVector<QRect> covering;
    if (!title.empty()) {
        Display* display = openDisplay();
        if (!display)
            return NoDisplay;
        const Window window = findViewable(display, Match{title, std::string()});
        XWindowAttributes attributes;
        if (window == None || !XGetWindowAttributes(display, window, &attributes)) {
            std::fprintf(stderr, "x11probe: no window \"%s\" shown\n", title.c_str());
            XCloseDisplay(display);
            return TimedOut;
        }
        area = QRect(attributes.x, attributes.y, attributes.width, attributes.height);
        covering = windowsAbove(display, window);
        XCloseDisplay(display);
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication application(argc, argv);
    QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return NoDisplay;
    const QImage image = screen->grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32);
    const QImage saved = width > 0 && width < image.width()
        ? image.scaledToWidth(width, Qt::SmoothTransformation)
        : image;
    if (image.isNull() || !saved.save(QString::fromStdString(file), "PNG")) {
        std::fprintf(stderr, "x11probe: cannot save %s\n", file.c_str());
        return BadUse;
    }
    area = area.isNull() ? image.rect() : area.intersected(image.rect());
    QSet<QRgb> colours;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = area.left(); x <= area.right(); ++x) {
            const bool covered = std::any_of(covering.cbegin(), covering.cend(),
                [x, y](const QRect& other) { return other.contains(x, y); });
            if (!covered)
                colours.insert(line[x]);
        }
    }
    std::printf("size %dx%d\narea %dx%d+%d+%d\ncolours %d\n", image.width(), image.height(), area.width(),
        area.height(), area.x(), area.y(), colours.size());
    return 0;
}

int usage()
{
    std::fprintf(stderr,
        "usage: x11probe launch [--title T] [--timeout-ms N] -- program args...\n"
        "       x11probe wait (--title T | --type TYPE) --state mapped|unmapped [--timeout-ms N]\n"
        "       x11probe close --title T\n"
        "       x11probe tray\n"
        "       x11probe grab file.png [--title T] [--width W]\n");
    return BadUse;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2)
        return usage();
    const std::string command = argv[1];
    Options options;
    if (!parseOptions(argc, argv, 2, &options))
        return usage();
    if (command == "launch")
        return launch(options);
    if (command == "wait")
        return waitFor(options);
    if (command == "close")
        return closeWindow(options);
    if (command == "tray")
        return tray();
    if (command == "grab" && options.rest.size() == 1)
        return grab(argc, argv, options.rest.front(), options.title, options.width);
    return usage();
}
