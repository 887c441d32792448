#pragma once

#include "device/SignObjModel.h"

class SignObjRowan : public SignObjModel<RowanSdk>
{
};
