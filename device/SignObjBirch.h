#pragma once

#include "device/WithPenAndLcd.h"

MV_DEFINE_SDK_BINDING(Birch, 5)

class SignObjBirch : public WithPenAndLcd<BirchSdk>
{
};
