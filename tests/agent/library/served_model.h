// An agent of the test's own, with a model that the test fills.
#pragma once

#include <functional>

#include <gtest/gtest.h>
#include <sys/types.h>

#include "daemon/model.h"

namespace agent::test {

// The switch's description, of every test: interfaces GE1/0/1 and on with the indexes from 1.
inline constexpr uint32_t INTERFACES = 12'000;

class ServedModelTest : public testing::Test {
protected:
    ~ServedModelTest() override;

    // Serves a model that fill has filled, in a process of its own, until the test ends.
    void serve(const std::function<void(Model &)> &fill);

private:
    pid_t process_ = 0;
};

// Configures an instance.
void configure(Model &model, uint16_t id, const std::function<void(InstanceConfig &)> &change);

} // namespace agent::test
