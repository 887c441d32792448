#include "tests/sdk/support/ModelTestCase.h"

#include "device/SignObjAlder.h"
#include "device/SignObjBirch.h"
#include "device/SignObjCedar.h"
#include "device/SignObjMaple.h"
#include "device/SignObjRowan.h"

std::unique_ptr<SignObjInterface> newPad(const Model &model)
{
    switch (model.letter) {
    case 'A':
        return std::make_unique<SignObjAlder>();
    case 'B':
        return std::make_unique<SignObjBirch>();
    case 'C':
        return std::make_unique<SignObjCedar>();
    case 'M':
        return std::make_unique<SignObjMaple>();
    default:
        return std::make_unique<SignObjRowan>();
    }
}

ModelTestCase::ModelTestCase(const Model &modelUnderTest) : model(modelUnderTest) {}

SignObjInterface &ModelTestCase::pad()
{
    if (!m_pad) {
        m_pad = newPad(model);
    }
    return *m_pad;
}

void ModelTestCase::initTestCase()
{
    qInfo("Model: %s", model.name);
}

void ModelTestCase::cleanup()
{
    m_pad.reset();
    SdkTestCase::cleanup();
}
