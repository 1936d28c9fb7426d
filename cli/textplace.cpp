// Signatures placed at texts.
#include "textplace.h"

#include <charconv>
#include <cmath>

#include "command.h"
#include "document.h"

namespace {

/// The lower left corner of a box as the reader of the turned page sees it, in the terms of the library: it turns what
/// it is given about the page's box, as if that began at 0 0.
cli::Distance seenCorner(const SigPosStruct& hit, const PdfPage& page) {
    const double width = std::trunc(page.mediaBox[2]) - std::trunc(page.mediaBox[0]);
    const double height = std::trunc(page.mediaBox[3]) - std::trunc(page.mediaBox[1]);
    const auto whole = [](double x, double y) {
        return cli::Distance{static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))};
    };
    switch ((page.rotation % 360 + 360) % 360 / 90) {
        case 1:
            return whole(hit.y1, width - hit.x2);
        case 2:
            return whole(width - hit.x2, height - hit.y2);
        case 3:
            return whole(height - hit.y2, hit.x1);
        default:
            return whole(hit.x1, hit.y1);
    }
}

}  // namespace

void cli::addTextPlaceOptions(const Parser& parser, TextPlaceOptions& options) {
    const Option at = parser.option("--at", options.text, "Puts the signature where this text stands");
    at.needs(parser.added("--size")).shownAs("TEXT");
    for (const char* const other : {"--page", "--position", "--corner"}) at.excludes(parser.added(other));
    parser.option("--at-hit", options.hit, "Which of several places: first (without it), last, or a number from 1")
        .needs(at)
        .shownAs("HIT");
    parser
        .option("--at-offset", options.offset,
                "From the lower left corner of the text to that of the signature, to the right and up; without it 0,0")
        .needs(at)
        .shownAs("X,Y");
}

std::optional<cli::TextPlace> cli::textPlaceOf(const TextPlaceOptions& options) {
    TextPlace place{options.text.value_or(""), 1, {}};
    if (options.hit == "last") {
        place.hit = -1;
    } else if (options.hit != "first") {
        const char* const end = options.hit.data() + options.hit.size();
        const auto [read, error] = std::from_chars(options.hit.data(), end, place.hit);
        if (error != std::errc() || read != end || place.hit < 1) {
            complain("--at-hit", "this is neither \"first\" nor \"last\" nor a number from 1 on: " + options.hit);
            return std::nullopt;
        }
    }
    const std::optional<Distance> offset = distanceOf(options.offset);
    if (!offset) {
        complain("--at-offset", "this is no distance such as 0,-40 or 10mm,-5mm: " + options.offset);
        return std::nullopt;
    }
    place.offset = *offset;
    return place;
}

std::optional<cli::Placement> cli::placedAtText(Placement placement, const TextPlace& place, CPdf& pdf,
                                                const std::string& file) {
    CPdfTextSearch search(&pdf);
    const int code = search.Find(place.text.c_str());
    if (code != 0) {
        complain(file, code);
        return std::nullopt;
    }
    const std::vector<SigPosStruct>& hits = search.GetHits();
    if (place.hit > static_cast<int>(hits.size())) {
        complain(file, "the text stands there " + std::to_string(hits.size()) + " times, so there is no place " +
                           std::to_string(place.hit));
        return std::nullopt;
    }
    const SigPosStruct& hit = place.hit < 0 ? hits.back() : hits[static_cast<std::size_t>(place.hit - 1)];
    const std::vector<PdfPage> pages = CPdfPages::All(pdf);
    const auto index = static_cast<std::size_t>(hit.page - 1);
    const Distance corner = seenCorner(hit, index < pages.size() ? pages[index] : PdfPage{});
    placement.page = hit.page - 1;
    placement.position = {1, corner.x + place.offset.x, corner.y + place.offset.y};
    return placement;
}
