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
    const auto launcher = world.launcher();
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), (KeyFacts{.path = "/keys/id_ed25519"}));
    world.defaults.setData(KeyManager::kDefaultsKey, "not a list");
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), KeyFacts{});
    world.defaults.remove(KeyManager::kDefaultsKey);
    EXPECT_EQ(launcher.lookUpKeyFacts(tunnel), KeyFacts{});
}

TEST(SshLauncher, NoKeyFactsWithoutAKeyOrWithAnotherMethod) {
    TunnelWorld world;
    const auto key = storedKey(world);
    const auto launcher = world.launcher();
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

// The launch of a tunnel whose secret is in the keychain.
struct SecretLaunch {
    explicit SecretLaunch(AuthMethod method) {
        world.host.environment = {
            {"HOME", "/home/someone"}, {"DISPLAY", ":7"}, {"SSH_AUTH_SOCK", "/run/agent"}};
        const auto key = storedKey(world);
        tunnel = keyTunnel(world, key.id);
        tunnel.authMethod = method;
        world.platform.secrets.saveTunnelPassword(support::Secret("hunter2"), tunnel.id);
        world.platform.secrets.saveKeyPassphrase(support::Secret("open sesame"), key.id);
        request = world.launch(tunnel).request();
    }

    // The bytes of the script that the child is pointed at.
    [[nodiscard]] std::string script() const {
        return world.platform.files.files.at(request.environment.at("SSH_ASKPASS")).bytes;
    }

    TunnelWorld world;
    Tunnel tunnel;
    platform::ProcessRequest request;
};

TEST(SshLauncher, StoredPasswordIsHandedOverByAScript) {
    const SecretLaunch launch(AuthMethod::password);
    EXPECT_EQ(launch.request.environment.at("SSH_ASKPASS_REQUIRE"), "force");
    EXPECT_EQ(launch.request.environment.at("DISPLAY"), ":0");
    EXPECT_FALSE(launch.request.environment.contains("SSH_AUTH_SOCK"));
    EXPECT_NE(launch.script().find("aHVudGVyMg=="), std::string::npos);
    EXPECT_EQ(launch.world.messages(launch.tunnel)[1], "🔑 Dùng password auth");
    EXPECT_EQ(launch.world.line(launch.tunnel, "🔑")->level, LogLevel::info);
}

TEST(SshLauncher, StoredPassphraseIsHandedOverByAScript) {
    const SecretLaunch launch(AuthMethod::privateKey);
    EXPECT_NE(launch.script().find("b3BlbiBzZXNhbWU="), std::string::npos);
    EXPECT_EQ(launch.world.messages(launch.tunnel)[1], "🔑 Dùng passphrase từ Keychain cho key");
    EXPECT_EQ(std::ranges::count(launch.request.arguments, "BatchMode=yes"), 0);
    EXPECT_EQ(launch.request.arguments.at(launch.request.arguments.size() - 2), "/keys/id_ed25519");
}

TEST(SshLauncher, AgentGetsNoScriptWhateverIsStored) {
    const SecretLaunch launch(AuthMethod::agent);
    EXPECT_FALSE(launch.request.environment.contains("SSH_ASKPASS"));
    EXPECT_EQ(launch.request.environment.at("DISPLAY"), ":7");
    EXPECT_TRUE(launch.world.platform.files.files.empty());
}

TEST(SshLauncher, KeyWithoutAPassphraseRunsInBatchModeWithoutAScript) {
    TunnelWorld world;
    const auto key = storedKey(world);
    const auto& request = world.launch(keyTunnel(world, key.id)).request();
    EXPECT_EQ(std::ranges::count(request.arguments, "BatchMode=yes"), 1);
    EXPECT_FALSE(request.environment.contains("SSH_ASKPASS"));
    EXPECT_TRUE(world.platform.files.files.empty());
}

TEST(SshLauncher, SecretStandsNowhereButInTheScript) {
    const SecretLaunch launch(AuthMethod::password);
    for (const std::string secret : {"hunter2", "aHVudGVyMg=="}) {
        for (const auto& argument : launch.request.arguments) {
            EXPECT_EQ(argument.find(secret), std::string::npos);
        }
        for (const auto& [name, value] : launch.request.environment) {
            EXPECT_EQ(value.find(secret), std::string::npos);
        }
        for (const auto& message : launch.world.messages(launch.tunnel)) {
            EXPECT_EQ(message.find(secret), std::string::npos);
        }
    }
}

TEST(SshLauncher, TunnelsThatLaunchTogetherHaveAScriptEach) {
    TunnelWorld world;
    for (const std::string port : {"1080", "1081"}) {
        auto tunnel = world.add(port);
        tunnel.authMethod = AuthMethod::password;
        world.platform.secrets.saveTunnelPassword(support::Secret("x"), tunnel.id);
        world.manager.connect(tunnel, world.store);
    }
    world.dispatch.runAll();
    EXPECT_EQ(world.platform.files.files.size(), 2U);
}

TEST(SshLauncher, DuplicateHasNoPassword) {
    TunnelWorld world;
    auto tunnel = world.add();
    tunnel.authMethod = AuthMethod::password;
    world.platform.secrets.saveTunnelPassword(support::Secret("x"), tunnel.id);
    tunnel.id = support::Uuid::random();
    world.launch(tunnel);
    EXPECT_NE(world.line(tunnel, "⚠ Password auth nhưng password trống"), nullptr);
}

} // namespace
} // namespace fernwick
