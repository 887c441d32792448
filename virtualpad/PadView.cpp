#include "virtualpad/PadView.h"

#include "virtualpad/SharedPad.h"

namespace virtualpad {

std::optional<PadView> currentPadView()
{
    SharedPad &shared = SharedPad::instance();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    const Pad &pad = shared.pad;
    if (!pad.isSignedByHand())
        return std::nullopt;
    return PadView{pad.session(), pad.model(), pad.drawing(), pad.keyStatus(), pad.lcdOn, pad.showsInformation};
}

} // namespace virtualpad
