#include "agent/library/served_model.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <event2/event.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "daemon/server.h"
#include "ofp/host.h"

namespace agent::test {

namespace {

// The runtime directory and the switch's description, which a process reads once.
class Surroundings : public testing::Environment {
public:
    Surroundings()
    {
        char name[] = "/tmp/ofp-library-test-XXXXXX";
        directory_ = mkdtemp(name);
        std::ofstream(directory_ / "host.toml")
            << "[[node]]\nid = 0\n\n[[interface]]\nindex = 1\nname = \"GE1/0/1\"\ncount = "
            << INTERFACES << "\n";
        setenv("OFP_RUNTIME_DIR", directory_.c_str(), 1);
        setenv("OFP_HOST_CONFIG", (directory_ / "host.toml").c_str(), 1);
    }
    ~Surroundings() override { std::filesystem::remove_all(directory_); }

private:
    std::filesystem::path directory_;
};

// Never returns. Writes a byte when it listens.
[[noreturn]] void run(const std::function<void(Model &)> &fill, int ready)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    Model model;
    fill(model);
    const int32_t lock = HOST_LockAgent(0);
    const int32_t listener = HOST_ListenAgent(0);
    event_base *const base = event_base_new();
    Server server(base, listener, model);
    if (lock < 0 || listener < 0 || !server.start() || write(ready, "", 1) != 1) {
        _exit(1);
    }
    close(ready);
    event_base_dispatch(base);
    _exit(1);
}

} // namespace

ServedModelTest::~ServedModelTest()
{
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
}

void ServedModelTest::serve(const std::function<void(Model &)> &fill)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    process_ = fork();
    ASSERT_GE(process_, 0);
    if (process_ == 0) {
        close(ends[0]);
        run(fill, ends[1]);
    }
    close(ends[1]);
    char byte = 0;
    const ssize_t got = read(ends[0], &byte, 1);
    close(ends[0]);
    ASSERT_EQ(got, 1) << "the agent did not start: " << HOST_LastError();
}

void configure(Model &model, uint16_t id, const std::function<void(InstanceConfig &)> &change)
{
    Configuration &configuration = model.configuration();
    const InstanceConfig *const known = configuration.staged(id);
    InstanceConfig instance = known ? *known : new_instance(id);
    change(instance);
    configuration.stage(id, std::move(instance));
    if (!configuration.commit()) {
        std::abort();
    }
}

} // namespace agent::test

int main(int argc, char **argv)
{
    testing::AddGlobalTestEnvironment(new agent::test::Surroundings);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
