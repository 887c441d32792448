#include "virtualpad/SharedPad.h"

namespace virtualpad {

SharedPad &SharedPad::instance()
{
    static SharedPad *const pShared = new SharedPad;
    return *pShared;
}

} // namespace virtualpad
