#include "bench/support/texts.hpp"

#include <array>
#include <span>
#include <string_view>

namespace nls::bench {

namespace {

constexpr std::string_view kAscii[] = {
    "The order must never drift, and the answer must arrive before the next row is fetched.",
    "2026-03-14T09:26:53.589Z INFO  [worker-07] commit ts=1741944413 rows=4821 bytes=991204 latency_us=187",
    "A short text is converted in place of a long one when nobody is looking at the clock.",
    "ERROR 1213 (40001): Deadlock found when trying to get lock; try restarting transaction id=0x7ffe21",
    "Every page of the index holds between forty and two hundred keys, and each of them is read again.",
    "GET /api/v2/customers?limit=50&after=c_83729 HTTP/1.1 200 5312 \"-\" \"client/4.2.1\" 0.018",
    "Memory that the caller owns is memory that the caller can count.",
    "SELECT id, name, city FROM customers WHERE name LIKE 'Mil%' ORDER BY name, id LIMIT 25 OFFSET 100;",
};
constexpr std::string_view kGerman[] = {
    "Die Geschäftsführung bestätigte gestern, daß die Übernahme der Möbelhäuser in Köln und Düsseldorf wie geplant "
    "abläuft.",
    "Für größere Bestellungen gewähren wir während der Sommermonate zusätzlich fünf Prozent Ermäßigung.",
    "Müller & Söhne GmbH, Königstraße 14, 70173 Stuttgart, Kundennummer 4711, Rückfragen bitte schriftlich.",
    "Der Schlüssel für die Tür zum Büro hängt am Brett neben der Küche, nicht über dem Kühlschrank.",
    "2026-03-14 09:26:53 WARNUNG Datensatz 8812 übersprungen: Prüfsumme ungültig, nächster Versuch in 30 s",
    "Öffentliche Gebäude schließen früher, weil die Heizung am Wochenende ausfällt.",
    "Zwölf Boxkämpfer jagen Viktor quer über den großen Sylter Deich, während es dämmert.",
};
constexpr std::string_view kFrench[] = {
    "Le château était fermé à cause des travaux, mais la forêt voisine restait ouverte aux élèves et à leurs familles.",
    "Après la réunion, le président a déclaré que les négociations étaient très avancées et qu'un accord était espéré.",
    "Société Générale d'Électricité, 12 rue de la Préfecture, 69003 Lyon, téléphone répété à l'accueil.",
    "Où est passé l'été dernier, demanda-t-elle, en regardant les péniches glisser sur la rivière gelée.",
    "2026-03-14 09:26:53 ERREUR échec de la requête numéro 8812 : délai dépassé, nouvelle tentative prévue",
    "Les bénéfices ont été répartis équitablement entre les sociétés créées l'année précédente.",
};
constexpr std::string_view kPolish[] = {
    "Zażółć gęślą jaźń, powiedział nauczyciel, a uczniowie zapisali zdanie w zeszytach.",
    "Wrocław i Łódź leżą przy ważnych drogach, które łączą wschód z zachodem kraju.",
    "Spółka zwróciła się do sądu o ustalenie własności gruntów położonych nad Wisłą.",
};
constexpr std::string_view kRussian[] = {
    "Все счастливые семьи похожи друг на друга, но каждая база данных медленна по-своему.",
    "Порядок строк в индексе не должен меняться десятилетиями, иначе поиск перестанет находить записи.",
    "Договор поставки номер 4711 от 14 марта заключён между обществом Северный ветер и заказчиком в Новгороде.",
    "Вечером над рекой поднялся туман, и пароход медленно отошёл от пристани.",
    "2026-03-14 09:26:53 ОШИБКА запись 8812 пропущена: неверная контрольная сумма",
    "Съешь ещё этих мягких французских булок, да выпей же чаю.",
};
constexpr std::string_view kGreek[] = {
    "Η σειρά των εγγραφών δεν πρέπει να αλλάζει ποτέ, γιατί τότε η αναζήτηση δεν βρίσκει τίποτα.",
    "Το πλοίο έφυγε από τον Πειραιά νωρίς το πρωί και έφτασε στη Σύρο το μεσημέρι.",
    "Η εταιρεία ανακοίνωσε ότι τα έσοδα του πρώτου τριμήνου αυξήθηκαν κατά 12 τοις εκατό.",
    "Ο ήλιος έδυε πίσω από τα βουνά και οι ψαράδες γύριζαν στο λιμάνι με τα δίχτυα γεμάτα.",
};
constexpr std::string_view kTurkish[] = {
    "Müşteri kayıtları İstanbul ve Diyarbakır şubelerinde ayrı ayrı tutulur.",
    "Çalışanların çoğu öğleden sonra işi bırakıp göl kıyısına gitti.",
    "Güneş batarken balıkçılar ağlarını topluyor, çocuklar kıyıda oynuyordu.",
};
constexpr std::string_view kHebrew[] = {
    "סדר השורות באינדקס אינו משתנה לעולם, אחרת החיפוש לא ימצא דבר.",
    "האונייה עזבה את נמל חיפה מוקדם בבוקר והגיעה לפני הצהריים.",
    "החברה הודיעה כי ההכנסות ברבעון הראשון עלו בשנים עשר אחוזים.",
};
constexpr std::string_view kArabic[] = {
    "ترتيب السجلات في الفهرس لا يتغير أبدا وإلا فلن يجد البحث شيئا.",
    "غادرت السفينة الميناء في الصباح الباكر ووصلت قبل الظهر.",
    "أعلنت الشركة أن إيرادات الربع الأول ارتفعت باثني عشر في المائة.",
};
constexpr std::string_view kThai[] = {
    "ลำดับของข้อมูลในดัชนีต้องไม่เปลี่ยนแปลง มิฉะนั้นการค้นหาจะไม่พบสิ่งใดเลย",
    "เรือออกจากท่าแต่เช้ามืดและถึงเกาะสมุยก่อนเที่ยงวัน",
    "บริษัทแจ้งว่ารายได้ไตรมาสแรกเพิ่มขึ้นร้อยละ 12 เมื่อเทียบกับปีก่อน",
    "เด็กนักเรียนเดินไปโรงเรียนพร้อมกับครูทุกวันจันทร์ถึงวันศุกร์",
    "ตลาดน้ำเปิดทุกวันตั้งแต่ 6 โมงเช้า มีผลไม้ ดอกไม้ และอาหารพื้นเมืองขายมากมาย",
};
constexpr std::string_view kJapanese[] = {
    "索引の順序は決して変わってはならない。変わると検索は何も見つけられなくなる。",
    "株式会社ミナトシステムは、第1四半期の売上高が前年同期比12%増加したと発表した。",
    "朝早く港を出た船は、昼前に島に着いた。子どもたちは桟橋で手を振っていた。",
    "お問い合わせは、受付番号 A-4711 を添えて、下記のメールアドレスまでお送りください。",
    "データベースのサーバーを再起動したところ、エラーメッセージが表示されなくなりました。",
    "2026-03-14 09:26:53 WARN  レコード 8812 をスキップしました: checksum mismatch",
    "吾輩は猫の世話をする技術者である。名前はまだ登録されていない。",
    "東京都千代田区丸の内一丁目、京都市左京区吉田本町、札幌市中央区北三条西六丁目。",
};
constexpr std::string_view kChineseSimplified[] = {
    "索引的顺序决不能改变，否则查询将找不到任何记录。",
    "公司宣布，第一季度的收入比去年同期增长了百分之十二。",
    "轮船清晨离开港口，中午之前到达了小岛，孩子们在码头上挥手。",
    "客户编号 4711，地址：北京市海淀区中关村大街二十七号，邮政编码 100080。",
    "数据库服务器重新启动以后，错误信息就不再出现了。",
    "春天来了，河边的柳树发出新芽，燕子也从南方飞了回来。",
};
constexpr std::string_view kChineseTraditional[] = {
    "索引的順序決不能改變，否則查詢將找不到任何記錄。",
    "公司宣布，第一季的收入比去年同期增長了百分之十二。",
    "輪船清晨離開港口，中午之前到達了小島，孩子們在碼頭上揮手。",
    "客戶編號 4711，地址：臺北市信義區忠孝東路五段二十七號，郵遞區號 110。",
    "資料庫伺服器重新啟動以後，錯誤訊息就不再出現了。",
    "春天來了，河邊的柳樹發出新芽，燕子也從南方飛了回來。",
};
constexpr std::string_view kKorean[] = {
    "색인의 순서는 결코 바뀌어서는 안 된다. 바뀌면 검색은 아무것도 찾지 못한다.",
    "회사는 1분기 매출이 지난해 같은 기간보다 12% 늘었다고 발표했다.",
    "배는 이른 아침 항구를 떠나 점심 전에 섬에 도착했고, 아이들은 부두에서 손을 흔들었다.",
    "고객 번호 4711, 주소: 서울특별시 종로구 세종대로 27, 우편번호 03172.",
    "데이터베이스 서버를 다시 시작한 뒤에는 오류 메시지가 나타나지 않았다.",
    "봄이 오자 강가의 버드나무에 새싹이 돋고 제비도 남쪽에서 돌아왔다.",
};
constexpr std::string_view kEmoji[] = {
    "Release day 🚀🎉 everything green ✅ thanks team 🙏🏽",
    "😀😃😄😁😆😅😂🤣",
    "Lunch? 🍕🍔🌮 or 🥗🍎🥑 — vote with 👍 or 👎",
    "🌍🌎🌏 hello from 🇩🇪🇫🇷🇯🇵 ✈️🏝️",
    "weekend plans: 🏔️⛷️☕📚🎶😴",
};

struct Corpus {
    const char* name;
    std::span<const std::string_view> sentences;
};

// In the order of the enumeration.
constexpr Corpus kCorpora[] = {
    {"ASCII", kAscii},
    {"German", kGerman},
    {"French", kFrench},
    {"Polish", kPolish},
    {"Russian", kRussian},
    {"Greek", kGreek},
    {"Turkish", kTurkish},
    {"Hebrew", kHebrew},
    {"Arabic", kArabic},
    {"Thai", kThai},
    {"Japanese", kJapanese},
    {"Chinese, simplified", kChineseSimplified},
    {"Chinese, traditional", kChineseTraditional},
    {"Korean", kKorean},
    {"Emoji", kEmoji},
};

const Corpus& corpus(Language language) {
    return kCorpora[static_cast<std::size_t>(language)];
}

// A small generator, so that a text is the same everywhere.
class Shuffle {
public:
    std::size_t below(std::size_t bound) {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<std::size_t>(state_ >> 33) % bound;
    }

private:
    unsigned long long state_ = 20260314;
};

bool isTrailByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// The largest length up to `limit` that ends between characters.
std::size_t wholeCharacters(std::string_view utf8, std::size_t limit) {
    if (limit >= utf8.size()) return utf8.size();
    while (limit > 0 && isTrailByte(utf8[limit])) --limit;
    return limit;
}

}  // namespace

const char* languageName(Language language) {
    return corpus(language).name;
}

std::string text(Language language, std::size_t bytes) {
    const auto sentences = corpus(language).sentences;
    Shuffle shuffle;
    std::string result;
    while (result.size() < bytes) {
        result += sentences[shuffle.below(sentences.size())];
        result += shuffle.below(4) == 0 ? "\n" : " ";
    }
    result.resize(wholeCharacters(result, bytes));
    return result;
}

std::vector<std::string> columnValues(Language language, std::size_t shortest, std::size_t longest, std::size_t count) {
    const std::string source = text(language, std::size_t{1} << 18);
    Shuffle shuffle;
    std::vector<std::string> values;
    std::size_t place = 0;
    while (values.size() < count) {
        const std::size_t wanted = shortest + shuffle.below(longest - shortest + 1);
        const std::string_view rest = std::string_view(source).substr(place);
        if (rest.size() < longest) {
            place = 0;
            continue;
        }
        const std::size_t length = wholeCharacters(rest, wanted);
        values.emplace_back(rest.substr(0, length));
        place += length;
    }
    return values;
}

}  // namespace nls::bench
