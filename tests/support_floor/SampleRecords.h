// Records with a field of every type that the coding knows.
#pragma once

#include "support/Date.h"
#include "support/Record.h"
#include "support/Uuid.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace fernwick::support::testing {

enum class Weather { calm, stormy };

constexpr auto rawTexts(Weather) {
    return std::array{rawText(Weather::calm, "Calm Sea"), rawText(Weather::stormy, "Storm")};
}

struct Point {
    int x = 0;
    double y = 0.0;

    bool operator==(const Point&) const = default;

    static constexpr auto fields() { return std::tuple{field("x", &Point::x), field("y", &Point::y)}; }
};

struct Voyage {
    Uuid id;
    std::string name;
    bool finished = false;
    std::int64_t miles = 0;
    Date startedAt;
    Weather weather = Weather::calm;
    std::optional<std::string> captain = "nobody";
    std::optional<Date> endedAt;
    std::vector<Uuid> ships;
    Point from;
    std::vector<Point> stops;

    bool operator==(const Voyage&) const = default;

    static constexpr auto fields() {
        return std::tuple{field("id", &Voyage::id),
                          field("name", &Voyage::name),
                          field("finished", &Voyage::finished),
                          field("miles", &Voyage::miles),
                          field("startedAt", &Voyage::startedAt),
                          field("weather", &Voyage::weather),
                          field("captain", &Voyage::captain),
                          field("endedAt", &Voyage::endedAt),
                          field("ships", &Voyage::ships),
                          field("from", &Voyage::from),
                          field("stops", &Voyage::stops)};
    }
};

// A record of one text, for the tests of texts.
struct Note {
    std::string text;

    bool operator==(const Note&) const = default;

    static constexpr auto fields() { return std::tuple{field("text", &Note::text)}; }
};

// A record of optional fields only, the first one included.
struct Draft {
    std::optional<std::string> title;
    std::optional<std::int64_t> pages;

    bool operator==(const Draft&) const = default;

    static constexpr auto fields() {
        return std::tuple{field("title", &Draft::title), field("pages", &Draft::pages)};
    }
};

inline constexpr std::string_view kVoyageId = "0F8FAD5B-D9CB-469F-A165-70867728950E";
inline constexpr std::string_view kShipId = "7C9E6679-7425-40DE-944B-E07FC1F90AE7";

inline Voyage sampleVoyage() {
    return {.id = *Uuid::parse(kVoyageId),
            .name = "North",
            .finished = true,
            .miles = 1200,
            .startedAt = {700000000.25},
            .weather = Weather::stormy,
            .captain = "Ada",
            .endedAt = Date{700000001},
            .ships = {*Uuid::parse(kShipId)},
            .from = {.x = -3, .y = 0.5},
            .stops = {{.x = 1, .y = 2.0}, {.x = 3, .y = 4.125}}};
}

// The JSON of a list of `sampleVoyage()` alone.
inline constexpr std::string_view kVoyageJson =
    R"([{"id":"0F8FAD5B-D9CB-469F-A165-70867728950E","name":"North","finished":true,"miles":1200,)"
    R"("startedAt":700000000.25,"weather":"Storm","captain":"Ada","endedAt":700000001,)"
    R"("ships":["7C9E6679-7425-40DE-944B-E07FC1F90AE7"],"from":{"x":-3,"y":0.5},)"
    R"("stops":[{"x":1,"y":2},{"x":3,"y":4.125}]}])";

} // namespace fernwick::support::testing
