#pragma once

/// Key events of the pads.
enum SignPadEvent { SIGNPAD_CANCEL_BUTTON = 0, SIGNPAD_ENTER_BUTTON = 1 };
