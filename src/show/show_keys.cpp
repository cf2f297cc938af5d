#include "show/show_keys.h"

#include "show/Show.h"

namespace varnholt {

ShowKey PressShowKey(Show& show, int key, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        return ShowKey::Unknown;
    }
    switch (key) {
    case Qt::Key_Right:
    case Qt::Key_Down:
    case Qt::Key_Space:
    case Qt::Key_PageDown:
        show.next();
        break;
    case Qt::Key_Left:
    case Qt::Key_Up:
    case Qt::Key_Backspace:
    case Qt::Key_PageUp:
        show.back();
        break;
    case Qt::Key_Home:
        show.goTo(1);
        break;
    case Qt::Key_End:
        show.goToEnd();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        show.enter();
        break;
    case Qt::Key_A:
        show.answer();
        break;
    case Qt::Key_T:
        show.toggleClock();
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the same key on many keyboards
        show.stretch(stretchSeconds);
        break;
    case Qt::Key_Minus:
        show.stretch(-stretchSeconds);
        break;
    case Qt::Key_B:
    case Qt::Key_Period:
        show.cover(PupilsView::Cover::Black);
        break;
    case Qt::Key_W:
    case Qt::Key_Comma:
        show.cover(PupilsView::Cover::White);
        break;
    case Qt::Key_S:
        show.swap();
        break;
    case Qt::Key_F:
        return ShowKey::SwapScreens;
    case Qt::Key_Escape:
        return show.takeBack() ? ShowKey::Done : ShowKey::End;
    default:
        if (key < Qt::Key_0 || key > Qt::Key_9) {
            return ShowKey::Unknown;
        }
        show.digit(key - Qt::Key_0);
    }
    return ShowKey::Done;
}

} // namespace varnholt
