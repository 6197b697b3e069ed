#include "base/FoldedText.h"
#include "base/Json.h"
#include "base/Text.h"
#include "catalog/FileTypes.h"
#include "catalog/KeywordList.h"
#include "catalog/store/GroupActions.h"
#include "catalog/store/LibraryActions.h"
#include "catalog/store/LibraryStore.h"
#include "catalog/store/MatchCounter.h"
#include "catalog/store/SmartAlbumEditor.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/StoreActions.h"
#include "tests/support/TestLibrary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace korvo {

namespace {

using Field = SmartAlbumRule::Field;
using Op = SmartAlbumRule::Op;
using Names = std::vector<std::string>;

constexpr auto threeStars = R"({"rules":[{"field":"rating","op":"atLeast","value":"3"}],"matchAll":true})";

LibrarySource smart(std::int64_t id)
{
    return {LibrarySource::Kind::smartAlbum, id, {}};
}

/// The rules as one reads them, without any of what makes the matcher fast.
class PlainReading {
public:
    static bool matches(const SmartAlbumRules& rules, const PhotoItem& item)
    {
        const auto holds = [&](const SmartAlbumRule& rule) { return one(rule, item); };
        return rules.matchAll || rules.rules.empty()
            ? std::all_of(rules.rules.begin(), rules.rules.end(), holds)
            : std::any_of(rules.rules.begin(), rules.rules.end(), holds);
    }

private:
    static bool one(const SmartAlbumRule& rule, const PhotoItem& item)
    {
        if (fault(rule))
            return false;
        if (rule.op == Op::isNot)
            return !one({rule.field, Op::is, rule.value}, item);
        if (rule.op == Op::notContains)
            return !one({rule.field, Op::contains, rule.value}, item);
        switch (rule.field) {
        case Field::rating:
            return compared(item.rating, rule);
        case Field::label:
            return compared(static_cast<double>(item.label), rule);
        case Field::focalLength:
            return item.focalLength && compared(*item.focalLength, rule);
        case Field::flagged:
            return item.flagged == (rule.value == "yes");
        case Field::hasAlt:
            return !item.metadata.altText.empty() == (rule.value == "yes");
        case Field::adjusted:
            return item.hasEdits() == (rule.value == "yes");
        case Field::kind:
            return (fileKind(item.filename) == FileKind::video) == (rule.value == "video");
        case Field::fileType:
            return spelling(lowerExtension(item.filename)) == spelling(rule.value);
        case Field::date: {
            if (!item.captureDate && !item.fileDate)
                return false;
            const auto day = localDay(item.captureDate ? *item.captureDate : *item.fileDate);
            return rule.op == Op::is     ? day == rule.value
                : rule.op == Op::atLeast ? day >= rule.value
                                         : day <= rule.value;
        }
        case Field::location: {
            const auto place = parseNearPlace(rule.value).value();
            return item.latitude && item.longitude
                && distanceInKilometres(place.latitude, place.longitude, *item.latitude, *item.longitude)
                <= place.kilometres;
        }
        default:
            return anyText(rule, item);
        }
    }

    static bool compared(double value, const SmartAlbumRule& rule)
    {
        const double wanted = std::stod(rule.value);
        return rule.op == Op::is     ? value == wanted
            : rule.op == Op::atLeast ? value >= wanted
                                     : value <= wanted;
    }

    static std::string spelling(const std::string& extension)
    {
        return extension == "jpg" ? "jpeg" : extension == "tif" ? "tiff" : extension;
    }

    static bool anyText(const SmartAlbumRule& rule, const PhotoItem& item)
    {
        std::vector<std::string> texts;
        const auto& all = item.metadata;
        const auto list = [&](const SharedText& text) {
            texts = splitKeywords(text);
            if (texts.empty())
                texts.emplace_back();
        };
        if (rule.field == Field::keyword)
            list(all.keywords);
        else if (rule.field == Field::person && rule.op == Op::is)
            list(item.people), texts.push_back(item.people.string());
        else if (rule.field == Field::person)
            texts.push_back(item.people.string());
        else if (rule.field == Field::text && rule.op == Op::is && rule.value.empty())
            texts.push_back(all == PhotoMetadata() ? "" : "some");
        else if (rule.field == Field::text)
            for (const auto& text :
                {all.title, all.caption, all.altText, all.keywords, all.creator, all.copyright})
                texts.push_back(text.string());
        else
            texts.push_back((rule.field == Field::filename ? item.filename
                    : rule.field == Field::camera          ? item.camera
                                                           : item.lens)
                                .string());
        return std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
            return rule.op == Op::is ? folded(text) == folded(rule.value)
                                     : folded(text).find(folded(rule.value)) != std::string::npos;
        });
    }
};

/// Photos and rules drawn from values few enough to meet each other.
struct Draw {
    std::mt19937 random{3};

    std::size_t upTo(std::size_t n) { return random() % n; }

    std::string of(const std::vector<const char*>& values) { return values[upTo(values.size())]; }

    std::string words()
    {
        return of({"", "Ana", "ÄRGER", "a\u0308rger", "Ana, Bo", "bo", "An", "Ana,  ärger ", "x", "a,,b",
            "An, ", ",", "Boats of ANA in the bay", "Bäche und Ärger, BO", "ANA, Boats of ANA in the bay"});
    }

    PhotoItem photo()
    {
        PhotoItem item;
        item.filename = of({"a.jpg", "A.JPEG", "b.tif", "c.mov", "noextension", "Ana.heic"});
        item.rating = static_cast<int>(upTo(7)) - 1;
        item.label = static_cast<PhotoLabel>(upTo(8));
        item.flagged = upTo(2) == 0;
        item.metadata = {words(), words(), words(), words(), words(), words()};
        item.editsJSON = upTo(2) ? "{}" : "";
        item.camera = words();
        item.lens = words();
        item.people = words();
        if (upTo(2))
            item.focalLength = static_cast<double>(upTo(4)) * 25;
        if (upTo(2))
            item.captureDate = 1.7e9 + static_cast<double>(upTo(300'000));
        if (upTo(2))
            item.fileDate = 1.7e9 + static_cast<double>(upTo(300'000));
        if (upTo(2)) {
            item.latitude = static_cast<double>(upTo(181)) - 90;
            item.longitude = static_cast<double>(upTo(361)) - 180;
        }
        return item;
    }

    std::string value(RuleValue kind)
    {
        switch (kind) {
        case RuleValue::number:
        case RuleValue::label:
            return of({"0", "3", "-1", "25", "2.5", "50", "7", "no number"});
        case RuleValue::day:
            return of({"2023-11-14", "2023-11-15", "2023-11-16", "2023-11-31"});
        case RuleValue::kind:
            return of({"photo", "video"});
        case RuleValue::fileType:
            return of({"jpg", "jpeg", "tiff", "mov", "heic"});
        case RuleValue::yesNo:
            return of({"yes", "no"});
        case RuleValue::place:
            return of({"3000 km of 10.5, 20.5", "9000.5 km of -80, 170", "1 km of 0, 0", "nowhere"});
        default:
            return of({"ana", "BO", "ärger", "r", "", "Ana"});
        }
    }

    SmartAlbumRules rules()
    {
        SmartAlbumRules rules;
        rules.matchAll = upTo(2) == 0;
        for (auto left = upTo(5); left > 0; --left) {
            const auto& field = smartAlbumFields()[upTo(smartAlbumFields().size())];
            const auto op = upTo(20) ? field.ops[upTo(field.ops.size())] : static_cast<Op>(upTo(7));
            rules.rules.push_back({field.field, op, value(field.value)});
        }
        return rules;
    }
};

} // namespace

TEST(SmartAlbumMatcher, matchesWhatAPlainReadingOfTheRulesDoes)
{
    Draw draw;
    std::vector<PhotoItem> items;
    for (int i = 0; i < 300; ++i)
        items.push_back(draw.photo());
    std::size_t matched = 0;
    for (int i = 0; i < 1500; ++i) {
        const auto rules = draw.rules();
        SmartAlbumMatcher matcher(rules);
        for (const auto& item : items) {
            const bool expected = PlainReading::matches(rules, item);
            ASSERT_EQ(matcher.matches(item), expected) << toJson(rules) << " " << item.filename;
            matched += expected ? 1 : 0;
        }
    }
    EXPECT_GT(matched, 50'000U);
}

TEST(Catalog, smartAlbumsListTheMastersTheirRulesMatch)
{
    TestLibrary library;
    auto& catalog = *library.catalog;
    const auto b = library.photo("b.jpg");
    const auto a = library.photo("a.jpg");
    library.photo("c.jpg");
    catalog.setRating(std::vector{a, b, library.version(b)}, 3);
    EXPECT_EQ(
        library.names(smart(catalog.createSmartAlbum("all", "{}"))), (Names{"a.jpg", "b.jpg", "c.jpg"}));
    EXPECT_EQ(library.names(smart(catalog.createSmartAlbum("three", threeStars))), (Names{"a.jpg", "b.jpg"}));
    EXPECT_EQ(catalog.countMatching(smartAlbumRules(threeStars)), 2U);
    EXPECT_THROW(library.names(smart(99)), NotFoundError);

    constexpr auto later = R"({"rules":[{"field":"mood","op":"is","value":"glad"}]})";
    const auto unreadable = catalog.createSmartAlbum("later", later);
    EXPECT_THROW(library.names(smart(unreadable)), SmartAlbumError);
    EXPECT_EQ(catalog.smartAlbum(unreadable).rules, later) << "untouched";
}

TEST(LibraryStore, aSmartAlbumFollowsEveryChangeOfItsPhotosAndOfItsRules)
{
    TestLibrary library;
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"})
        library.photo(name);
    ManualMainThread main;
    LibraryStore store(main, std::move(library.catalog));
    const auto shown = [&] {
        Names names;
        for (const auto position : store.list().shown())
            names.push_back(store.list().items()[position].filename.string());
        return names;
    };
    const auto album = createSmartAlbum(store, "three", smartAlbumRules(threeStars));
    store.chooseSource(smart(album));
    EXPECT_EQ(shown(), Names());
    setRating(store, std::vector<PhotoID>{1, 3}, 4);
    EXPECT_EQ(shown(), (Names{"a.jpg", "c.jpg"}));
    setRating(store, only(3), 2);
    EXPECT_EQ(shown(), Names{"a.jpg"});
    store.undo();
    EXPECT_EQ(shown(), (Names{"a.jpg", "c.jpg"}));
    setMetadata(store, only(2), {.title = SharedText("Bridge")});
    changeSmartAlbum(store, album, "bridges", SmartAlbumRules{{{Field::text, Op::contains, "bridge"}}, true});
    EXPECT_EQ(shown(), Names{"b.jpg"});
    createSmartAlbum(store, "zoos", {});
    {
        const auto unread
            = store.changed.connect([](const LibraryChange& change) { EXPECT_FALSE(change.list); });
        placeSmartAlbum(store, album, std::nullopt);
        EXPECT_EQ(store.tree().smartAlbums.back().id, album);
    }
    MatchCounter counter(main, store);
    const auto counted = [&] { return main.runUntil([&] { return counter.result().has_value(); }); };
    counter.count(smartAlbumRules(threeStars));
    EXPECT_FALSE(counter.result()) << "read in the background";
    ASSERT_TRUE(counted());
    EXPECT_EQ(counter.result(), 2U);
    setMetadata(store, only(3), {.keywords = SharedText("bridges")});
    EXPECT_EQ(shown(), (Names{"b.jpg", "c.jpg"}));

    deleteSmartAlbum(store, album);
    EXPECT_EQ(shown(), Names());
    EXPECT_TRUE(store.sourceFault());
    setRating(store, only(2), 5);
    store.undo();
    store.undo();
    EXPECT_EQ(shown(), (Names{"b.jpg", "c.jpg"}));
    EXPECT_FALSE(store.sourceFault());
    store.catalog().changeSmartAlbum(album, "later", "[]");
    store.reload();
    EXPECT_EQ(shown(), Names());
    EXPECT_EQ(store.sourceFault().value().find("the rules of the smart album “later” cannot be read"), 0U);
    changeSmartAlbum(store, album, "renamed", std::nullopt);
    EXPECT_EQ(store.catalog().smartAlbum(album).rules, "[]") << "untouched";
    store.chooseSource(std::nullopt);
    counter.count(smartAlbumRules(threeStars));
    EXPECT_EQ(counter.result(), 2U);
    setRating(store, only(2), 5);
    EXPECT_EQ(counter.result(), 3U) << "it follows the library";
}

TEST(SmartAlbumEditor, anotherFieldKeepsWhatFits)
{
    struct Case {
        SmartAlbumRule before;
        Field field;
        SmartAlbumRule after;
    };
    for (const auto& [before, field, after] : {
             Case{newRule(), Field::focalLength, {Field::focalLength, Op::atLeast, "3"}},
             {{Field::keyword, Op::is, "sea"}, Field::camera, {Field::camera, Op::is, "sea"}},
             {{Field::keyword, Op::contains, "sea"}, Field::flagged, {Field::flagged, Op::is, "yes"}},
             {{Field::flagged, Op::isNot, "yes"}, Field::kind, {Field::kind, Op::isNot, "photo"}},
             {{Field::kind, Op::is, "video"}, Field::location, {Field::location, Op::near, ""}},
         }) {
        EXPECT_EQ(withField(before, field), after) << before.value;
        EXPECT_FALSE(after.value.size() > 0 && fault(after)) << "what is offered can be read";
    }
}

TEST(SmartAlbumEditor, aPlaceIsTypedAsTwoTexts)
{
    EXPECT_EQ(nearTexts("10 km of 48.1, 11.5"), (NearTexts{"10", "48.1, 11.5"}));
    EXPECT_EQ(nearTexts("10;48.1;11.5"), (NearTexts{"10", "48.1, 11.5"}));
    EXPECT_EQ(nearTexts("x km of Munich"), (NearTexts{"x", "Munich"})) << "kept as it was typed";
    EXPECT_EQ(nearTexts("nowhere"), (NearTexts{"", "nowhere"}));
    EXPECT_EQ(nearValue({"10", "48.1, 11.5"}), "10 km of 48.1, 11.5");
    EXPECT_TRUE(isPlace("48.1° N, 11.5° E"));
    EXPECT_FALSE(isPlace("Munich"));
}

} // namespace korvo
