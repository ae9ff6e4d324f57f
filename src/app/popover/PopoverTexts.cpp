#include "app/popover/PopoverTexts.h"

#include <QHash>

namespace quelmo::PopoverTexts {

namespace {

struct Bilingual {
    QString ko;
    QString en;
};

const QHash<QString, Bilingual>& table() {
    static const QHash<QString, Bilingual> texts{
        {QStringLiteral("language"), {QStringLiteral("언어"), QStringLiteral("Language")}},
        {QStringLiteral("cat"), {QStringLiteral("고양이"), QStringLiteral("Cat")}},
        {QStringLiteral("launchAtLogin"),
         {QStringLiteral("로그인 시 자동 실행"), QStringLiteral("Launch at login")}},
        {QStringLiteral("updatedEverySecond"),
         {QStringLiteral("1초마다 갱신"), QStringLiteral("Updated every 1s")}},
        {QStringLiteral("quit"), {QStringLiteral("종료"), QStringLiteral("Quit")}},
        {QStringLiteral("showPerProcess"),
         {QStringLiteral("프로세스별 사용량 보기"), QStringLiteral("Show per-process usage")}},
        {QStringLiteral("collecting"), {QStringLiteral("수집 중…"), QStringLiteral("Collecting…")}},
    };
    return texts;
}

} // namespace

QString text(const QString& key, const QString& lang) {
    const auto found = table().constFind(key);
    if (found == table().cend())
        return {};
    return lang == QLatin1String("ko") ? found->ko : found->en;
}

QString languageChoiceLabel(const QString& raw, const QString& lang) {
    if (raw == QLatin1String("ko"))
        return QStringLiteral("한국어");
    if (raw == QLatin1String("en"))
        return QStringLiteral("English");
    return lang == QLatin1String("ko") ? QStringLiteral("시스템") : QStringLiteral("System");
}

} // namespace quelmo::PopoverTexts
