#pragma once

#include "device/SignObjInterface.h"
#include "tests/sdk/support/SdkTestCase.h"

#include <memory>

/// A new pad object of the model, which loads the library of the working directory.
std::unique_ptr<SignObjInterface> newPad(const Model &model);

/// A test of what all models have in common: it runs once for each of them, on a pad object of its own per test
/// function. Run it through MV_TEST_EVERY_MODEL.
class ModelTestCase : public SdkTestCase
{
    Q_OBJECT

public:
    explicit ModelTestCase(const Model &model);

protected:
    const Model model;

    /// The pad object, made at the first use.
    SignObjInterface &pad();
    bool hasPenAndLcd() const { return strchr("ABC", model.letter); }
    void expectCall(const char *pattern, recording::Answer answer = {}) const
    {
        expectFor(model, pattern, std::move(answer));
    }
    std::string spelled(const char *pattern) const { return spelledFor(model, pattern); }

protected Q_SLOTS:
    void initTestCase();
    void cleanup();

private:
    std::unique_ptr<SignObjInterface> m_pad;
};

/// The application object is never deleted: Qt's offscreen platform would leave its screen behind.
#define MV_TEST_EVERY_MODEL(Application, TestClass)                                                                    \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        [[maybe_unused]] static const auto *application = new Application(argc, argv);                                 \
        int failures = 0;                                                                                              \
        for (const Model &model : allModels) {                                                                         \
            TestClass test(model);                                                                                     \
            failures += QTest::qExec(&test, argc, argv);                                                               \
        }                                                                                                              \
        return failures;                                                                                               \
    }
