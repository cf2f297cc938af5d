#include "toolkit/clipboard_probe.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QGuiApplication>

#ifdef VARNHOLT_XCB
#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>
#include <xcb/xcb.h>
#endif

namespace varnholt {

#ifdef VARNHOLT_XCB

namespace {

constexpr int patienceMs = 1500;

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};

template <typename T>
std::unique_ptr<T, Free> owned(T* memory)
{
    return std::unique_ptr<T, Free>(memory);
}

/// A connection of its own: on the toolkit's the answer would go to the toolkit. It stays for
/// the rest of the program, because there are programs that die of answering, when they wake
/// up, a window that has gone.
class SelectionProbe
{
public:
    SelectionProbe()
        : connection_(xcb_connect(nullptr, nullptr))
    {
        if (xcb_connection_has_error(connection_) != 0) {
            return;
        }
        clipboard_ = atom("CLIPBOARD");
        targets_ = atom("TARGETS");
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    }
    ~SelectionProbe() { xcb_disconnect(connection_); }
    SelectionProbe(const SelectionProbe&) = delete;
    SelectionProbe& operator=(const SelectionProbe&) = delete;

    /// Whether the selection's owner has said in time which formats it offers.
    [[nodiscard]] bool isAnswered()
    {
        const auto holder = owned(xcb_get_selection_owner_reply(
            connection_, xcb_get_selection_owner(connection_, clipboard_), nullptr));
        if (!holder || holder->owner == XCB_NONE) {
            return true;
        }
        while (owned(xcb_poll_for_event(connection_))) {
            // Late answers to earlier questions.
        }
        xcb_convert_selection(connection_, window_, clipboard_, targets_, targets_,
                              XCB_CURRENT_TIME);
        xcb_flush(connection_);
        return waitForNotice();
    }

private:
    [[nodiscard]] xcb_atom_t atom(const char* name)
    {
        const auto reply = owned(xcb_intern_atom_reply(
            connection_,
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name),
            nullptr));
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

    [[nodiscard]] bool waitForNotice()
    {
        const QDeadlineTimer limit(patienceMs);
        for (;;) {
            while (const auto event = owned(xcb_poll_for_event(connection_))) {
                if ((event->response_type & 0x7F) == XCB_SELECTION_NOTIFY) {
                    return true;
                }
            }
            if (xcb_connection_has_error(connection_) != 0) {
                return true;
            }
            if (limit.hasExpired()) {
                return false;
            }
            pollfd readable{xcb_get_file_descriptor(connection_), POLLIN, 0};
            poll(&readable, 1, static_cast<int>(limit.remainingTime()));
        }
    }

    xcb_connection_t* connection_;
    xcb_window_t window_ = XCB_NONE;
    xcb_atom_t clipboard_ = XCB_ATOM_NONE;
    xcb_atom_t targets_ = XCB_ATOM_NONE;
};

} // namespace

bool ClipboardAnswers()
{
    if (QGuiApplication::platformName() != QStringLiteral("xcb") ||
        QGuiApplication::clipboard()->ownsClipboard()) {
        return true;
    }
    static SelectionProbe probe;
    return probe.isAnswered();
}

#else

bool ClipboardAnswers()
{
    return true;
}

#endif

QString ClipboardSilentSentence()
{
    return QCoreApplication::translate(
        "Clipboard", "The program that holds what was copied does not answer. Please wait until "
                     "it does, or copy again.");
}

} // namespace varnholt
