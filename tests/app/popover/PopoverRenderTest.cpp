#include "app/popover/CleanupFeed.h"
#include "app/popover/CleanupRules.h"
#include "app/popover/PopoverContext.h"
#include "app/preview/PopoverPreview.h"

#include <QAccessible>
#include <QFile>
#include <QFontMetricsF>
#include <QJsonArray>
#include <QJsonDocument>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <gtest/gtest.h>

namespace quelmo {
namespace {

// The example machine: 12 of 16 GB in use, a little power, a few busy processes.
QJsonObject exampleState(const QString& lang, const QString& style,
                         const QJsonArray& expanded = {}) {
    return QJsonObject{
        {"lang", lang},
        {"catStyle", style},
        {"expanded", expanded},
        {"readings", QJsonObject{{"cpuTotal", 0.234},
                                 {"cpuPerCore", QJsonArray{0.1, 0.5, 0.0, 1.3}},
                                 {"gpu", 0.12},
                                 {"aneLoad", 0.0},
                                 {"memUsed", 12884901888.0},
                                 {"memTotal", 17179869184.0},
                                 {"memFraction", 0.75},
                                 {"cpuWatts", 1.0},
                                 {"gpuWatts", 1.0},
                                 {"aneWatts", 0.0},
                                 {"dramWatts", 2.0},
                                 {"totalWatts", 4.0},
                                 {"chipName", "Test Chip"},
                                 {"coreSummary", "4 cores"}}},
        {"topCPU", QJsonArray{QJsonObject{{"pid", 11}, {"name", "compiler"}, {"cpu", 150.0}}}},
        {"topMem", QJsonArray{}},
    };
}

void collect(QQuickItem* item, QList<QQuickItem*>& out) {
    out.append(item);
    for (QQuickItem* child : item->childItems())
        collect(child, out);
}

// The texts drawn on screen (visible items only).
QStringList visibleTexts(QQuickItem* root) {
    QList<QQuickItem*> items;
    collect(root, items);
    QStringList texts;
    for (QQuickItem* item : items)
        if (item->inherits("QQuickText") && item->isVisible() && item->opacity() > 0)
            texts.append(item->property("text").toString());
    return texts;
}

// The item of that name in the visual tree (parts made on demand are not QObject children).
QQuickItem* named(QQuickItem* root, const char* name) {
    QList<QQuickItem*> items;
    collect(root, items);
    for (QQuickItem* item : items)
        if (item->objectName() == QLatin1String(name))
            return item;
    return nullptr;
}

bool shows(QQuickItem* root, const char* name) {
    QQuickItem* item = named(root, name);
    return item && item->isVisible() && item->opacity() > 0;
}

double topOf(QQuickItem* root, const char* name) {
    QQuickItem* item = named(root, name);
    return item ? item->mapToItem(root, QPointF(0, 0)).y() : -1;
}

TEST(PopoverRender, CardsStackInOrderWithTheirReadingsFormatted) {
    PopoverPreview preview(PreviewState::fromJson(exampleState("en", "white")));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    QQuickItem* root = preview.root();
    const double header = topOf(root, "header");
    const double cleanup = topOf(root, "cleanupCardSlot");
    const double metrics = topOf(root, "metricsSection");
    const double power = topOf(root, "powerCard");
    const double footer = topOf(root, "footer");
    EXPECT_LE(header, cleanup);
    EXPECT_LT(cleanup, metrics);
    EXPECT_LT(metrics, power);
    EXPECT_LT(power, footer);

    // As tall as the content: no screen, so the limit is 740.
    EXPECT_EQ(root->height(), root->property("contentHeight").toDouble());
    EXPECT_LE(root->height(), 740);

    const QStringList texts = visibleTexts(preview.root());
    for (const char* expected : {"12.0 / 16.0 GB", "75%", "23%", "4.0 W", "4.00 W", "1.00 W",
                                 "0.00 W", "4 cores", "Test Chip", "Updated every 1s", "Quit"})
        EXPECT_TRUE(texts.contains(QString::fromUtf8(expected))) << expected;
    // Collapsed: the per-core strip instead of the process list.
    EXPECT_TRUE(shows(preview.root(), "coreStrip"));
    EXPECT_FALSE(shows(preview.root(), "topCPUList"));
}

// The process lists: one name column, so equal values draw equal bars whatever the names; figures
// in digits of one width, so they do not jitter as they change; a name cut to the column tells
// its whole self to the pointer and to assistive technologies.
TEST(PopoverRender, ProcessListsAlignTheirBarsAndFigures) {
    QJsonObject state = exampleState("en", "white", QJsonArray{"cpu", "memory"});
    const QString longName = QStringLiteral("a-process-with-a-name-far-too-long-for-its-column");
    state.insert("topCPU", QJsonArray{QJsonObject{{"pid", 11}, {"name", "sh"}, {"cpu", 50.0}},
                                      QJsonObject{{"pid", 12}, {"name", longName}, {"cpu", 50.0}}});
    PopoverPreview preview(PreviewState::fromJson(state));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    const QStringList texts = visibleTexts(preview.root());
    EXPECT_TRUE(texts.contains("50%"));
    EXPECT_TRUE(texts.contains(QStringLiteral("Collecting…"))); // the empty memory list
    EXPECT_FALSE(shows(preview.root(), "coreStrip"));

    QList<QQuickItem*> items;
    collect(preview.root(), items);
    QList<QQuickItem*> names;
    QList<QQuickItem*> figures;
    for (QQuickItem* item : items) {
        if (item->objectName() == QLatin1String("processName") && item->isVisible())
            names.append(item);
        if (item->objectName() == QLatin1String("processFigure") && item->isVisible())
            figures.append(item);
    }
    ASSERT_EQ(names.size(), 2);
    EXPECT_EQ(names[0]->width(), 150);
    EXPECT_EQ(names[1]->width(), 150);

    QQuickItem* cut = names[0]->property("text") == longName ? names[0] : names[1];
    EXPECT_TRUE(cut->property("truncated").toBool());
    QAccessibleInterface* about = QAccessible::queryAccessibleInterface(cut);
    ASSERT_TRUE(about);
    EXPECT_EQ(about->text(QAccessible::Description), longName);

    // Every figure that changes each second (the bars', the processes', the total watts) in the
    // font it is drawn with.
    for (QQuickItem* item : items)
        if (item->objectName() == QLatin1String("figure") ||
            item->objectName() == QLatin1String("totalWatts"))
            figures.append(item);
    ASSERT_GE(figures.size(), 5);
    for (QQuickItem* figure : figures) {
        const QFontMetricsF metrics(figure->property("font").value<QFont>());
        SCOPED_TRACE(figure->property("text").toString().toStdString());
        EXPECT_EQ(metrics.horizontalAdvance(QStringLiteral("1111")),
                  metrics.horizontalAdvance(QStringLiteral("0000")));
        EXPECT_EQ(metrics.horizontalAdvance(QStringLiteral("8888")),
                  metrics.horizontalAdvance(QStringLiteral("0000")));
    }
}

// The power bar splits its width by the watts, left to right in the components' colours: the
// example's 1, 1, 0 and 2 W give a quarter blue, a quarter lavender, no pink, half gray.
TEST(PopoverRender, PowerBarSplitsByTheWatts) {
    PopoverPreview preview(PreviewState::fromJson(exampleState("en", "white")));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    const QImage image = preview.render();
    QQuickItem* bar = named(preview.root(), "powerBar");
    ASSERT_TRUE(bar);
    const QRectF area = bar->mapRectToItem(preview.root(), bar->boundingRect());
    ASSERT_GT(area.width(), 100);
    const qreal ratio = image.devicePixelRatio();
    const int y = int((area.top() + area.height() / 2) * ratio);
    const auto run = [&](QColor colour) {
        QList<int> xs;
        for (int x = int(area.left() * ratio); x < int(area.right() * ratio); ++x)
            if (image.pixelColor(x, y).rgb() == colour.rgb())
                xs.append(x);
        return xs;
    };
    const double width = area.width() * ratio;
    const QList<int> blue = run(QColor::fromRgbF(0.53f, 0.64f, 0.83f));
    const QList<int> lav = run(QColor::fromRgbF(0.68f, 0.63f, 0.84f));
    const QList<int> gray = run(QColor::fromRgbF(0.62f, 0.64f, 0.68f));
    EXPECT_TRUE(run(QColor::fromRgbF(0.91f, 0.71f, 0.70f)).isEmpty());
    ASSERT_FALSE(blue.isEmpty() || lav.isEmpty() || gray.isEmpty());
    EXPECT_NEAR(static_cast<double>(blue.size()), width / 4, 2);
    EXPECT_NEAR(static_cast<double>(lav.size()), width / 4, 2);
    EXPECT_NEAR(static_cast<double>(gray.size()), width / 2, 2);
    EXPECT_LT(blue.last(), lav.first());
    EXPECT_LT(lav.last(), gray.first());
}

// Tooltips are made on demand: a swatch's shows its style's name after the delay, and goes with
// the pointer.
TEST(PopoverRender, TooltipsAreMadeWhenWanted) {
    PopoverPreview preview(PreviewState::fromJson(exampleState("en", "white")));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    QQuickItem* swatch = named(preview.root(), "swatch-black");
    ASSERT_TRUE(swatch);
    QQuickItem* tip = nullptr;
    for (QQuickItem* child : swatch->childItems())
        if (QString::fromLatin1(child->metaObject()->className()).startsWith("HoverTip"))
            tip = child;
    ASSERT_TRUE(tip);
    EXPECT_FALSE(tip->property("popup").value<QObject*>());

    tip->setProperty("shown", true);
    QObject* popup = tip->property("popup").value<QObject*>();
    ASSERT_TRUE(popup);
    EXPECT_EQ(popup->property("text").toString(), swatch->property("label").toString());
    EXPECT_TRUE(QTest::qWaitFor([&] { return popup->property("visible").toBool(); }, 2000));
    EXPECT_EQ(popup->property("parent").value<QQuickItem*>(), swatch);

    tip->setProperty("shown", false);
    EXPECT_FALSE(tip->property("popup").value<QObject*>());
}

// Pixels within `item` close to `colour` (blended colours count when within `tolerance`).
int pixelsNear(const QImage& image, QQuickItem* root, QQuickItem* item, QColor colour,
               int tolerance) {
    const QRectF area = item->mapRectToItem(root, item->boundingRect());
    const qreal ratio = image.devicePixelRatio();
    int count = 0;
    for (int y = int(area.top() * ratio); y < int(area.bottom() * ratio); ++y)
        for (int x = int(area.left() * ratio); x < int(area.right() * ratio); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (std::abs(pixel.red() - colour.red()) <= tolerance &&
                std::abs(pixel.green() - colour.green()) <= tolerance &&
                std::abs(pixel.blue() - colour.blue()) <= tolerance)
                ++count;
        }
    return count;
}

// Pixels of the logo within a few levels of `colour`.
int logoPixelsOf(PopoverPreview& preview, QColor colour) {
    const QImage image = preview.render();
    return pixelsNear(image, preview.root(), named(preview.root(), "logo"), colour, 3);
}

TEST(PopoverRender, TheLogoWearsTheChosenFur) {
    const QColor blackFur = QColor::fromRgbF(0.26f, 0.27f, 0.33f);
    PopoverPreview black(PreviewState::fromJson(exampleState("en", "black")));
    ASSERT_TRUE(black.root()) << black.errors().toStdString();
    EXPECT_GT(logoPixelsOf(black, blackFur), 100);

    PopoverPreview white(PreviewState::fromJson(exampleState("en", "white")));
    ASSERT_TRUE(white.root());
    EXPECT_EQ(logoPixelsOf(white, blackFur), 0);
}

// The cleanup card's example states, as the preview program draws them.
QJsonObject cleanupState(const char* name) {
    QFile file(QStringLiteral(QUELMO_PREVIEW_STATES "/%1.json").arg(QLatin1String(name)));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return QJsonDocument::fromJson(file.readAll()).object();
}

TEST(CleanupCardRender, EmptyCardSaysSoWithoutCountOrCutAll) {
    PopoverPreview preview(PreviewState::fromJson(cleanupState("cleanup-empty")));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    QQuickItem* root = preview.root();
    const QStringList texts = visibleTexts(root);
    EXPECT_TRUE(texts.contains(QStringLiteral(
        "Nothing to clean up. No app is hogging resources or left running unused.")));
    EXPECT_TRUE(texts.contains(QStringLiteral("AI notes off")));
    EXPECT_TRUE(
        texts.contains(QStringLiteral("AI notes off — No local model runtime is installed")));
    EXPECT_FALSE(shows(root, "countBadge"));
    EXPECT_FALSE(shows(root, "cutAllButton"));
    EXPECT_FALSE(shows(root, "candidateRows"));
}

TEST(CleanupCardRender, MixedVerdictsHoverAndCriteria) {
    PopoverPreview mixed(PreviewState::fromJson(cleanupState("cleanup-mixed")));
    ASSERT_TRUE(mixed.root()) << mixed.errors().toStdString();
    const QImage image = mixed.render();
    QQuickItem* root = mixed.root();
    QStringList texts = visibleTexts(root);
    for (const char* expected : {"Firefox ESR", "Spotify", "node", "Keep", "3", "Cut all", "1.8GB",
                                 "Judged by Apple Intelligence", "Apple Intelligence · on-device"})
        EXPECT_TRUE(texts.contains(QString::fromUtf8(expected))) << expected;
    // No row under the pointer: no detail block, no criteria.
    EXPECT_FALSE(texts.contains(QStringLiteral("Last used 2h 5m ago · no window")));
    EXPECT_FALSE(shows(root, "criteriaPanel"));
    // The sparkle runs from pink through peach to lavender: some of it is peach.
    QQuickItem* header = named(root, "cleanupHeader");
    const QColor peach = QColor::fromRgbF(0.93f, 0.78f, 0.60f);
    EXPECT_GT(pixelsNear(image, root, header, peach, 12), 0);

    PopoverPreview hovered(PreviewState::fromJson(cleanupState("cleanup-hovered")));
    ASSERT_TRUE(hovered.root());
    hovered.render();
    texts = visibleTexts(hovered.root());
    for (const char* expected :
         {"Unused app", "Last used 2h 5m ago · no window", "Caution",
          "A web browser left open in the background; no pages are being watched."})
        EXPECT_TRUE(texts.contains(QString::fromUtf8(expected))) << expected;
    // Only the hovered row opens: Spotify's explanation stays hidden.
    EXPECT_FALSE(
        texts.contains(QStringLiteral("Music player; it may be playing music right now.")));

    PopoverPreview criteria(PreviewState::fromJson(cleanupState("cleanup-criteria")));
    ASSERT_TRUE(criteria.root());
    criteria.render();
    EXPECT_TRUE(shows(criteria.root(), "criteriaPanel"));
    texts = visibleTexts(criteria.root());
    for (const char* expected :
         {"How it picks only the unused", "Never touches what you're using", "Idle for a while",
          "No visible window", "Or resource spikes", "Rests when idle", "AI says 'cut'",
          "AI says 'keep'", "On-device judgment", "You always confirm"})
        EXPECT_TRUE(texts.contains(QString::fromUtf8(expected))) << expected;
    // The panel opens between the banner and the mascot.
    EXPECT_LT(topOf(criteria.root(), "aiBanner"), topOf(criteria.root(), "criteriaPanel"));
    EXPECT_LT(topOf(criteria.root(), "criteriaPanel"), topOf(criteria.root(), "catMascot"));
}

// The card's two kinds of Cut reach the cut sequence with what they stand for: a row's Cut sends
// the mascot down to that row; "Cut all" goes once fewer than two rows are to be cut, and takes
// every row not kept.
TEST(CleanupCardRender, RowCutWalksToItsRowAndCutAllLeavesKeptRows) {
    QJsonObject state = cleanupState("cleanup-mixed");
    PopoverPreview preview(PreviewState::fromJson(state));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    QQuickItem* root = preview.root();
    CleanupFeed& feed = preview.cleanup();
    ASSERT_EQ(feed.candidates()->count(), 3);
    EXPECT_TRUE(shows(root, "cutAllButton"));

    QQuickItem* card = named(root, "cleanupCard");
    QQuickItem* mascot = named(root, "catMascot");
    QList<QQuickItem*> items;
    collect(root, items);
    QQuickItem* firefox = nullptr;
    for (QQuickItem* item : items)
        if (item->objectName() == "candidateRow" && item->property("title") == "Firefox ESR")
            firefox = item;
    ASSERT_TRUE(card && mascot && firefox);
    const double rowMiddle = firefox->mapToItem(card, QPointF(0, firefox->height() / 2)).y();
    const double laneMiddle = mascot->mapToItem(card, QPointF(0, mascot->height() / 2)).y();
    items.clear();
    collect(firefox, items);
    const auto cut = std::find_if(items.begin(), items.end(), [](QQuickItem* item) {
        return item->objectName() == "cutButton";
    });
    ASSERT_NE(cut, items.end());
    QMetaObject::invokeMethod(*cut, "clicked");
    EXPECT_NEAR(feed.cut()->catTravelY(), rowMiddle - laneMiddle - cleanup_rules::laneToRowOffset,
                0.5);
    QTest::qWait(CutSequence::terminateAtMs + 100);
    ASSERT_EQ(feed.candidates()->count(), 2);
    EXPECT_FALSE(shows(root, "cutAllButton")); // Spotify is kept: one row left to cut

    QMetaObject::invokeMethod(named(root, "cutAllButton"), "clicked");
    ASSERT_EQ(feed.candidates()->count(), 1);
    EXPECT_EQ(feed.candidates()->data(feed.candidates()->index(0), Qt::DisplayRole), "Spotify");
}

// Texts from outside the program (process names, window titles, chip names, the model's notes)
// may look like markup: they are drawn as they are, fetch nothing and style nothing.
TEST(CleanupCardRender, OutsideTextsAreDrawnAsPlainText) {
    QTcpServer listener;
    ASSERT_TRUE(listener.listen(QHostAddress::LocalHost));
    int connections = 0;
    QObject::connect(&listener, &QTcpServer::newConnection, [&] {
        while (QTcpSocket* socket = listener.nextPendingConnection()) {
            ++connections;
            socket->close();
        }
    });
    const QString markup = QStringLiteral("<img src=\"http://127.0.0.1:%1/x.png\"><b>Prints y</b> "
                                          "forever")
                               .arg(listener.serverPort());

    QJsonObject state = cleanupState("cleanup-hovered");
    QJsonObject verdicts = state.value("verdicts").toObject();
    QJsonObject firefox = verdicts.value("Firefox ESR").toObject();
    firefox.insert("explanation", markup);
    verdicts.insert("Firefox ESR", firefox);
    state.insert("verdicts", verdicts);
    QJsonObject readings = state.value("readings").toObject();
    readings.insert("chipName", markup);
    state.insert("readings", readings);
    state.insert("expanded", QJsonArray{"cleanup", "cpu"});
    state.insert("topCPU", QJsonArray{QJsonObject{{"pid", 11}, {"name", markup}, {"cpu", 50.0}}});

    PopoverPreview preview(PreviewState::fromJson(state));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    QTest::qWait(300);
    preview.render();
    EXPECT_EQ(connections, 0);

    QList<QQuickItem*> items;
    collect(preview.root(), items);
    int drawn = 0;
    for (QQuickItem* item : items) {
        if (!item->inherits("QQuickText"))
            continue;
        EXPECT_EQ(item->property("textFormat").toInt(), 0) // Text.PlainText
            << item->property("text").toString().toStdString();
        if (item->isVisible() && item->property("text").toString() == markup)
            ++drawn;
    }
    // The explanation, the chip name and the process name, each as it came.
    EXPECT_EQ(drawn, 3);

    // Nor does anything else of the popover's engine reach beyond the machine's own files.
    QQmlComponent image(preview.window().engine());
    image.setData(QStringLiteral("import QtQuick\nImage { source: \"http://127.0.0.1:%1/y.png\" }")
                      .arg(listener.serverPort())
                      .toUtf8(),
                  QUrl(QStringLiteral("qrc:/probe.qml")));
    std::unique_ptr<QObject> probe(image.create());
    ASSERT_TRUE(probe) << image.errorString().toStdString();
    QTest::qWait(300);
    EXPECT_EQ(connections, 0);
}

// Korean throughout, and a change of language in the popover turns every text at once: the
// card's own words, the rows' words and the footer's.
TEST(CleanupCardRender, KoreanCardTurnsEnglishAtOnce) {
    PopoverPreview preview(PreviewState::fromJson(cleanupState("cleanup-korean")));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    const char* korean[] = {"Cut 추천",
                            "모두 Cut",
                            "유지",
                            "민감도",
                            "주의",
                            "종료",
                            "마지막 사용 2시간 5분 전 · 창 없음",
                            "어떻게 '안 쓰는 것'만 고르나",
                            "언어",
                            "고양이",
                            "로그인 시 자동 실행",
                            "1초마다 갱신"};
    const char* english[] = {"Cut pick",
                             "Cut all",
                             "Keep",
                             "Sensitivity",
                             "Caution",
                             "Quit",
                             "Last used 2h 5m ago · no window",
                             "How it picks only the unused",
                             "Language",
                             "Cat",
                             "Launch at login",
                             "Updated every 1s"};
    QStringList texts = visibleTexts(preview.root());
    for (const char* expected : korean)
        EXPECT_TRUE(texts.contains(QString::fromUtf8(expected))) << expected;
    for (const char* absent : english)
        EXPECT_FALSE(texts.contains(QString::fromUtf8(absent))) << absent;

    preview.context().setLangRaw(QStringLiteral("en"));
    texts = visibleTexts(preview.root());
    for (const char* expected : english)
        EXPECT_TRUE(texts.contains(QString::fromUtf8(expected))) << expected;
    for (const char* absent : korean)
        EXPECT_FALSE(texts.contains(QString::fromUtf8(absent))) << absent;
}

} // namespace
} // namespace quelmo
