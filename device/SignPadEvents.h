#pragma once

#include <cstdint>

/// Key events of the pads.
enum SignPadEvent { SIGNPAD_CANCEL_BUTTON = 0, SIGNPAD_ENTER_BUTTON = 1 };

/// A callback's address as the log has it: its low 32 bits.
template <class Result, class... Parameters>
unsigned LoggedAddress(Result (*pfnCallback)(Parameters...))
{
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(pfnCallback));
}
