#include "QtPrinting.h"
#include "ScriptedModel.h"
#include "advisor/AIAdvisor.h"
#include "advisor/GenVerdict.h"
#include "settings/SettingsKeys.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QSettings>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;
using namespace Qt::StringLiterals;

namespace {

TEST(GenVerdictSchema, ListsTheFourPropertiesInOrderWithTheirGuides) {
    const QByteArray text = GenVerdict::schemaText();
    const QJsonObject properties = GenVerdict::schema().value("properties").toObject();
    ASSERT_EQ(properties.size(), 4);
    const QStringList names = {"explanation", "safeToQuit", "risk", "recommendation"};
    qsizetype previous = -1;
    QStringList descriptions;
    for (const QString& name : names) {
        const qsizetype at = text.indexOf("\"" + name.toUtf8() + "\": {");
        EXPECT_GT(at, previous) << name.toStdString() << " out of order";
        previous = at;
        const QJsonObject property = properties.value(name).toObject();
        EXPECT_EQ(property.value("type"), name == "safeToQuit" ? "boolean" : "string");
        EXPECT_EQ(property.size(), 2); // no constraint besides type and description
        descriptions << property.value("description").toString();
    }
    EXPECT_EQ(QCryptographicHash::hash(descriptions.join('\n').toUtf8(), QCryptographicHash::Sha256)
                  .toHex(),
              "136f829310d75cbd368fe4631bf3548df38c1d592a297a420946053d8ab43eb5");
    EXPECT_EQ(GenVerdict::schema().value("required").toArray(), QJsonArray::fromStringList(names));
    EXPECT_TRUE(GenVerdict::promptWithSchema("P").startsWith("P\n\n"));
    EXPECT_TRUE(GenVerdict::promptWithSchema("P").endsWith(QString::fromUtf8(text)));
}

TEST(GenVerdictSchema, AnswerIsReadStrictlyAndWhole) {
    const auto full =
        GenVerdict::fromJson(R"({"risk":"SAFE","extra":1,"recommendation":"cut","safeToQuit":true,)"
                             R"("explanation":"  Image viewer  "})");
    ASSERT_TRUE(full);
    EXPECT_EQ(*full, (GenVerdict{"  Image viewer  ", true, "SAFE", "cut"}));
    EXPECT_EQ(GenVerdict::fromJson(full->toJson()), full);

    for (const char* broken :
         {R"({"explanation":"x","safeToQuit":false,"recommendation":"keep"})",
          R"({"explanation":"x","safeToQuit":"true","risk":"SAFE","recommendation":"keep"})",
          R"({"explanation":null,"safeToQuit":true,"risk":"SAFE","recommendation":"keep"})",
          R"({"explanation":"x","safeToQuit":true,"risk":"SAFE","recommendation":1})",
          R"([{"explanation":"x","safeToQuit":true,"risk":"SAFE","recommendation":"cut"}])",
          R"({"explanation":"x","safeToQuit":true,"risk":"SAFE","recommendation":"cut")",
          "```json\n{}\n```", "", "\xff\xfe\x00"})
        EXPECT_FALSE(GenVerdict::fromJson(broken)) << broken;
}

TEST(AIAdvisorNormalize, DangerAndCautionBeforeSafeKeepBeforeCut) {
    const QList<std::pair<QString, QString>> risks = {{"SAFE", u"안전"_s},
                                                      {"DANGER", u"위험"_s},
                                                      {"CAUTION", u"주의"_s},
                                                      {"Warning", u"주의"_s},
                                                      {"", u"주의"_s},
                                                      {"unsafe", u"안전"_s},
                                                      {"safe, not dangerous", u"위험"_s},
                                                      {"Safe with caution", u"주의"_s},
                                                      {u"안전"_s, u"안전"_s},
                                                      {u"안전하지만 주의"_s, u"주의"_s},
                                                      {u"주의, 위험할 수도"_s, u"위험"_s}};
    for (const auto& [answer, expected] : risks)
        EXPECT_EQ(AIAdvisor::normalizeRisk(answer), expected) << answer.toStdString();

    const QList<std::pair<QString, QString>> recommendations = {{"cut", "cut"},
                                                                {"CUT", "cut"},
                                                                {"Keep running", "keep"},
                                                                {"close", "keep"},
                                                                {"", "keep"},
                                                                {"cut, don't keep", "keep"},
                                                                {u"닫아도 됨"_s, "cut"},
                                                                {u"켜둘 것"_s, "keep"},
                                                                {u"유지"_s, "keep"},
                                                                {u"둘 다 닫기"_s, "keep"},
                                                                {u"자르기"_s, "cut"},
                                                                {"scuttle", "cut"}};
    for (const auto& [answer, expected] : recommendations)
        EXPECT_EQ(AIAdvisor::normalizeRec(answer), expected) << answer.toStdString();
}

TEST(AIAdvisorStatus, ReasonTextsInTheLanguageOfEachRead) {
    using A = ModelAvailability;
    const QList<std::tuple<A, QString, QString>> texts = {
        {A::deviceNotEligible, u"이 기기는 Apple Intelligence 미지원"_s,
         "Apple Intelligence not supported on this Mac"},
        {A::appleIntelligenceNotEnabled, u"Apple Intelligence가 꺼져 있음"_s,
         "Apple Intelligence is turned off"},
        {A::modelNotReady, u"모델 다운로드 중"_s, "Model is downloading"},
        {A::otherReason, u"사용 불가"_s, "Unavailable"}};
    for (const auto& [availability, korean, english] : texts) {
        auto* model = new ScriptedModel;
        model->availability = availability;
        AIAdvisor advisor{std::unique_ptr<LanguageModel>(model)};
        QSettings().setValue(SettingsKeys::lang, "ko");
        EXPECT_EQ(advisor.status(), (AIAdvisor::Status{false, korean}));
        QSettings().setValue(SettingsKeys::lang, "en");
        EXPECT_EQ(advisor.status(), (AIAdvisor::Status{false, english}));
    }
    QSettings().remove(SettingsKeys::lang);
    EXPECT_EQ(AIAdvisor::statusFor(A::available, true), (AIAdvisor::Status{true, {}}));
}

} // namespace
