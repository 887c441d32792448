#pragma once

#include "device/SignObjModel.h"

MV_DEFINE_SDK_BINDING(Rowan, 4)

class SignObjRowan : public SignObjModel<RowanSdk>
{
};
