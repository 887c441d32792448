#pragma once

#include "device/WithPenAndLcd.h"

class SignObjBirch : public WithPenAndLcd<BirchSdk>
{
};
