#pragma once

#include "device/SignObjModel.h"

class SignObjMaple : public SignObjModel<MapleSdk>
{
};
