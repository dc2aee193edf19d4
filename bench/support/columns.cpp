#include "bench/support/columns.hpp"

#include <cstdio>
#include <random>
#include <span>
#include <string_view>

#include "bench/support/peers.hpp"

namespace nls::bench {

namespace {

constexpr std::string_view kGermanNames[] = {
    "Müller",  "Schmidt",  "Schäfer", "Groß",      "Weiß",   "Köhler", "Jäger", "Schröder", "Krüger",  "Böttcher",
    "Lehmann", "Hoffmann", "Strauß",  "von Bülow", "Öztürk", "Meyer",  "Meier", "Maier",    "Petersen"};
constexpr std::string_view kGermanGiven[] = {"Anna",  "Jürgen", "Günther", "Käthe", "Heinz-Peter", "Sören",
                                             "Björn", "Ulrike", "Karl",    "Änne",  "Wolfgang",    "Mia"};
constexpr std::string_view kGermanStreets[] = {"Königstraße", "Hauptstraße",  "Am Mühlbach", "Schloßallee",
                                               "Gartenweg",   "Bäckergasse",  "Lindenallee", "Zum Großen Holz",
                                               "Ringstraße",  "Kölner Straße"};
constexpr std::string_view kGermanTowns[] = {"Düsseldorf", "Köln",   "München", "Göttingen",
                                             "Hamburg",    "Lübeck", "Leipzig", "Würzburg"};
constexpr std::string_view kRussianNames[] = {"Иванов",   "Петрова", "Щербаков",  "Ёлкин",   "Соколова",
                                              "Кузнецов", "Морозов", "Цветаева",  "Яковлев", "Фёдоров",
                                              "Жуков",    "Орлова",  "Эйзенштейн"};
constexpr std::string_view kRussianGiven[] = {"Анна", "Сергей", "Алёна", "Дмитрий", "Ольга", "Юрий", "Пётр", "Евгения"};
constexpr std::string_view kRussianStreets[] = {"ул. Ленина",  "Невский просп.", "ул. Щорса",
                                                "Садовая ул.", "наб. Фонтанки",  "Цветной бульв."};
constexpr std::string_view kRussianTowns[] = {"Москва", "Самара", "Королёв", "Тверь", "Ярославль", "Уфа"};
constexpr std::string_view kJapaneseNames[] = {"佐藤", "鈴木", "高橋", "田中", "伊藤", "渡辺",
                                               "山本", "中村", "小林", "加藤", "吉田", "サトウ"};
constexpr std::string_view kJapaneseGiven[] = {"太郎", "花子", "さくら", "健一", "美咲", "翔太", "ユリ", "Ken"};
constexpr std::string_view kJapaneseStreets[] = {"東京都千代田区丸の内", "京都市左京区吉田本町", "大阪府堺市北区",
                                                 "札幌市中央区北三条", "横浜市港北区新横浜"};
constexpr std::string_view kJapaneseTowns[] = {"丸の内ビル", "コーポ桜", "第2ハイツ", "ABCタワー", "中央館"};

struct Stock {
    std::span<const std::string_view> names, given, streets, towns;
};

Stock stockOf(Language language) {
    switch (language) {
        case Language::german:
            return {kGermanNames, kGermanGiven, kGermanStreets, kGermanTowns};
        case Language::russian:
            return {kRussianNames, kRussianGiven, kRussianStreets, kRussianTowns};
        case Language::japanese:
            return {kJapaneseNames, kJapaneseGiven, kJapaneseStreets, kJapaneseTowns};
        default:
            giveUp("no column of this language");
    }
}

}  // namespace

std::vector<std::string> column(Language language, std::size_t count) {
    const Stock stock = stockOf(language);
    std::mt19937 random{20260314};
    const auto pick = [&](std::span<const std::string_view> from) { return std::string{from[random() % from.size()]}; };
    const auto number = [&](const char* form) {
        char digits[32];
        std::snprintf(digits, sizeof digits, form, static_cast<unsigned>(random() % 100000));
        return std::string{digits};
    };
    std::vector<std::string> values;
    while (values.size() < count) {
        std::string value;
        switch (random() % 3) {
            case 0:
                value = pick(stock.names) + ", " + pick(stock.given) + (random() % 2 ? " " + pick(stock.given) : "");
                break;
            case 1:
                value = pick(stock.streets) + number(" %u, ") + pick(stock.towns);
                break;
            default:
                value = std::string(1, static_cast<char>('A' + random() % 4)) + number("R-%05u") + number("-%05u/x");
        }
        if (value.size() >= 8 && value.size() <= 64) values.push_back(value);
    }
    return values;
}

}  // namespace nls::bench
