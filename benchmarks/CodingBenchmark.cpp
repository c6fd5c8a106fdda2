// Coding of whole catalogues, beside two JSON libraries that do the same work or less: neither checks a key, a
// UUID or a raw text, and what nlohmann::json parses is not yet a record. Goals at 10,000 tunnels: encode no
// slower than RapidJSON's writer and 4 times as fast as nlohmann::json's; decode 5 times as fast as
// nlohmann::json parses. Both linear from 100 to 100,000 tunnels.
//
// The C library hands a block of 32 MiB and more back to the kernel when it is freed, and smaller ones not, so
// a document of 100,000 tunnels would pay for fresh pages each time and the others never. To compare like with
// like, freed memory is kept here for all sizes; and what fresh memory adds is measured for all sizes as well,
// beside a plain copy of the same document.
#include "SampleCatalogue.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <array>
#include <chrono>
#include <limits>
#include <malloc.h>

namespace {

using fernwick::Tunnel;

constexpr const char* kLabel = "Production database";

std::vector<Tunnel> catalogueFor(const benchmark::State& state) {
    return fernwick::benchmarks::sampleTunnels(static_cast<std::size_t>(state.range(0)), kLabel);
}

std::string jsonFor(const benchmark::State& state) {
    return fernwick::support::encodeList(catalogueFor(state)).value();
}

void finish(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void encodeRecords(benchmark::State& state) {
    const auto tunnels = catalogueFor(state);
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        const auto json = fernwick::support::encodeList(tunnels);
        bytes = json->size();
        benchmark::DoNotOptimize(json->data());
    }
    finish(state, bytes);
}

// Times the work with no freed memory at hand: what it writes to are pages that the kernel has yet to give.
void timeOnFreshMemory(benchmark::State& state, const auto& work) {
    using Clock = std::chrono::steady_clock;
    for ([[maybe_unused]] auto _ : state) {
        malloc_trim(0);
        const auto began = Clock::now();
        const std::string written = work();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - began).count());
        benchmark::DoNotOptimize(written.data());
    }
}

void encodeOnFreshMemory(benchmark::State& state) {
    const auto tunnels = catalogueFor(state);
    timeOnFreshMemory(state, [&] { return *fernwick::support::encodeList(tunnels); });
}

void copyOnFreshMemory(benchmark::State& state) {
    const auto json = jsonFor(state);
    timeOnFreshMemory(state, [&] { return std::string(json); });
}

using RapidWriter = rapidjson::Writer<rapidjson::StringBuffer>;

void put(RapidWriter& writer, std::string_view key, std::string_view text) {
    writer.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void put(RapidWriter& writer, const fernwick::support::Uuid& uuid) {
    std::array<char, fernwick::support::Uuid::kTextLength> text{};
    uuid.write(text.data());
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void put(RapidWriter& writer, const Tunnel& tunnel) {
    writer.StartObject();
    writer.Key("id");
    put(writer, tunnel.id);
    put(writer, "name", tunnel.name);
    put(writer, "host", tunnel.host);
    put(writer, "sshPort", tunnel.sshPort);
    put(writer, "user", tunnel.user);
    put(writer, "localPort", tunnel.localPort);
    put(writer, "remotePort", tunnel.remotePort);
    put(writer, "remoteHost", tunnel.remoteHost);
    put(writer, "tunnelType", fernwick::support::toRawText(tunnel.tunnelType));
    put(writer, "authMethod", fernwick::support::toRawText(tunnel.authMethod));
    writer.Key("identityKeyID");
    put(writer, *tunnel.identityKeyID);
    writer.Key("tagIDs");
    writer.StartArray();
    for (const auto& tag : tunnel.tagIDs) {
        put(writer, tag);
    }
    writer.EndArray();
    put(writer, "notes", tunnel.notes);
    writer.Key("keepAliveInterval");
    writer.Int64(tunnel.keepAliveInterval);
    writer.Key("reconnectOnFailure");
    writer.Bool(tunnel.reconnectOnFailure);
    writer.Key("compression");
    writer.Bool(tunnel.compression);
    put(writer, "jumpHost", tunnel.jumpHost);
    writer.Key("createdAt");
    writer.Double(tunnel.createdAt.secondsSinceReference);
    writer.Key("lastConnectedAt");
    writer.Double(tunnel.lastConnectedAt->secondsSinceReference);
    writer.EndObject();
}

void encodeRapidJson(benchmark::State& state) {
    const auto tunnels = catalogueFor(state);
    std::size_t bytes = 0;
    for ([[maybe_unused]] auto _ : state) {
        rapidjson::StringBuffer buffer;
        RapidWriter writer(buffer);
        writer.StartArray();
        for (const auto& tunnel : tunnels) {
            put(writer, tunnel);
        }
        writer.EndArray();
        bytes = buffer.GetSize();
        benchmark::DoNotOptimize(buffer.GetString());
    }
    finish(state, bytes);
}

void encodeNlohmann(benchmark::State& state) {
    const auto json = jsonFor(state);
    const auto document = nlohmann::ordered_json::parse(json);
    for ([[maybe_unused]] auto _ : state) {
        const auto text = document.dump();
        benchmark::DoNotOptimize(text.data());
    }
    finish(state, json.size());
}

void decodeRecords(benchmark::State& state) {
    const auto json = jsonFor(state);
    for ([[maybe_unused]] auto _ : state) {
        auto tunnels = fernwick::support::decodeList<Tunnel>(json);
        if (!tunnels) {
            state.SkipWithError("the catalogue does not decode");
            break;
        }
        benchmark::DoNotOptimize(tunnels->data());
    }
    finish(state, json.size());
}

void decodeNlohmann(benchmark::State& state) {
    const auto json = jsonFor(state);
    for ([[maybe_unused]] auto _ : state) {
        auto document = nlohmann::json::parse(json);
        benchmark::DoNotOptimize(&document);
    }
    finish(state, json.size());
}

void sizes(benchmark::internal::Benchmark* cases) {
    cases->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(encodeRecords)->Apply(sizes);
BENCHMARK(encodeOnFreshMemory)->Apply(sizes)->UseManualTime();
BENCHMARK(copyOnFreshMemory)->Apply(sizes)->UseManualTime();
BENCHMARK(encodeRapidJson)->Apply(sizes);
BENCHMARK(encodeNlohmann)->Apply(sizes);
BENCHMARK(decodeRecords)->Apply(sizes);
BENCHMARK(decodeNlohmann)->Apply(sizes);

} // namespace

int main(int argc, char** argv) {
    mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
