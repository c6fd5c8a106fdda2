#include "tunnel/SshLauncher.h"

#include "catalogue/KeyManager.h"
#include "tunnel/TunnelWorld.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

using fakes::TunnelWorld;

IdentityKey storedKey(TunnelWorld& world) {
    KeyManager keys(world.defaults);
    IdentityKey key{support::Uuid::random(), "key", "/keys/id_ed25519", "", {}};
    keys.add(key);
    return key;
}

Tunnel keyTunnel(TunnelWorld& world, const support::Uuid& keyID) {
    auto tunnel = world.add();
    tunnel.identityKeyID = keyID;
    return tunnel;
}

TEST(SshLauncher, RunsSshWithTheKeysPath) {
    TunnelWorld world;
    const auto key = storedKey(world);
    const auto& request = world.launch(keyTunnel(world, key.id)).request();
    EXPECT_EQ(request.executable, "/usr/bin/ssh");
    const auto& arguments = request.arguments;
    const auto flag = std::ranges::find(arguments, "-i");
    ASSERT_NE(flag, arguments.end());
    EXPECT_EQ(*(flag + 1), "/keys/id_ed25519");
}

TEST(SshLauncher, KeyFactsComeStraightFromTheStoredList) {
    TunnelWorld world;
    const auto key = storedKey(world);
    auto tunnel = keyTunnel(world, key.id);
    const SshLauncher launcher(world.host, world.defaults, world.manager.logs());
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), (KeyFacts{.path = "/keys/id_ed25519"}));
    world.defaults.setData(KeyManager::kDefaultsKey, "not a list");
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), KeyFacts{});
    world.defaults.remove(KeyManager::kDefaultsKey);
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), KeyFacts{});
}

TEST(SshLauncher, NoKeyFactsWithoutAKeyOrWithAnotherMethod) {
    TunnelWorld world;
    const auto key = storedKey(world);
    const SshLauncher launcher(world.host, world.defaults, world.manager.logs());
    auto tunnel = keyTunnel(world, key.id);
    tunnel.authMethod = AuthMethod::agent;
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), KeyFacts{});
    tunnel.authMethod = AuthMethod::privateKey;
    tunnel.identityKeyID = support::Uuid::random();
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), KeyFacts{});
    tunnel.identityKeyID.reset();
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), KeyFacts{});
}

platform::Environment launchedEnvironment(TunnelWorld& world, AuthMethod method) {
    auto tunnel = world.add();
    tunnel.authMethod = method;
    return world.launch(tunnel).request().environment;
}

TEST(SshLauncher, EnvironmentIsACopyWithoutTheAgentAndTheBatchMode) {
    TunnelWorld world;
    world.host.environment = {{"HOME", "/elsewhere"},
                              {"LANG", "vi_VN.UTF-8"},
                              {"SSH_AUTH_SOCK", "/run/agent"},
                              {"SSH_BATCH_MODE", "1"}};
    const platform::Environment expected{{"HOME", "/elsewhere"}, {"LANG", "vi_VN.UTF-8"}};
    EXPECT_EQ(launchedEnvironment(world, AuthMethod::privateKey), expected);
    EXPECT_EQ(launchedEnvironment(world, AuthMethod::password), expected);
}

TEST(SshLauncher, AgentKeepsItsSocket) {
    TunnelWorld world;
    world.host.environment = {{"HOME", "/elsewhere"}, {"SSH_AUTH_SOCK", "/run/agent"}, {"SSH_BATCH_MODE", ""}};
    EXPECT_EQ(launchedEnvironment(world, AuthMethod::agent),
              (platform::Environment{{"HOME", "/elsewhere"}, {"SSH_AUTH_SOCK", "/run/agent"}}));
}

TEST(SshLauncher, AgentRunsWhereItsSocketIsCalledDefault) {
    TunnelWorld world;
    world.host.agent = "/support/agent";
    auto tunnel = world.add();
    tunnel.authMethod = AuthMethod::agent;
    EXPECT_EQ(world.launch(tunnel).request().workingFolder, "/support/agent");
    world.host.agent.reset();
    auto without = world.add();
    without.authMethod = AuthMethod::agent;
    EXPECT_EQ(world.launch(without).request().workingFolder, "");
}

TEST(SshLauncher, TheOtherMethodsRunWhereTheApplicationDoes) {
    TunnelWorld world;
    world.host.agent = "/support/agent";
    EXPECT_EQ(world.launch(world.add()).request().workingFolder, "");
}

TEST(SshLauncher, MissingHomeIsTheAccounts) {
    TunnelWorld world;
    world.host.environment = {};
    world.host.home = "/home/of-the-account";
    EXPECT_EQ(launchedEnvironment(world, AuthMethod::privateKey),
              (platform::Environment{{"HOME", "/home/of-the-account"}}));
}

TEST(SshLauncher, PasswordLoginWithoutAPasswordIsWarnedOfAndGoesOn) {
    TunnelWorld world;
    auto tunnel = world.add();
    tunnel.authMethod = AuthMethod::password;
    world.launch(tunnel);
    const auto* warning = world.line(tunnel, "⚠ Password auth nhưng password trống");
    ASSERT_NE(warning, nullptr);
    EXPECT_EQ(warning->level, LogLevel::warning);
    EXPECT_EQ(world.processes.launched().size(), 1U);
}

TEST(SshLauncher, KeyAndAgentHaveNoLineOfTheirOwn) {
    TunnelWorld world;
    for (const auto method : {AuthMethod::privateKey, AuthMethod::agent}) {
        auto tunnel = world.add();
        tunnel.authMethod = method;
        world.launch(tunnel);
        EXPECT_EQ(world.messages(tunnel).size(), 3U);
    }
}

} // namespace
} // namespace fernwick
