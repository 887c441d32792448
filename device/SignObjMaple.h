#pragma once

#include "device/SignObjModel.h"

MV_DEFINE_SDK_BINDING(Maple, 3)

class SignObjMaple : public SignObjModel<MapleSdk>
{
};
