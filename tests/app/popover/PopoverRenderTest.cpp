#include "app/preview/PopoverPreview.h"

#include <QAccessible>
#include <QJsonArray>
#include <QQuickItem>
#include <QQuickView>
#include <gtest/gtest.h>

namespace quelmo {
namespace {

// The design's example machine: 12 of 16 GB in use, a little power, a few busy processes.
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

QQuickItem* named(QQuickItem* root, const char* name) {
    return root->findChild<QQuickItem*>(QString::fromLatin1(name));
}

double topOf(QQuickItem* root, const char* name) {
    QQuickItem* item = named(root, name);
    return item ? item->mapToItem(root, QPointF(0, 0)).y() : -1;
}

TEST(PopoverRender, CardsStackInOrderAtTheDesignedWidth) {
    PopoverPreview preview(PreviewState::fromJson(exampleState("en", "white")));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    const QImage image = preview.render();
    QQuickItem* root = preview.root();
    EXPECT_EQ(image.width(), 320 * image.devicePixelRatio());

    const double header = topOf(root, "header");
    const double cleanup = topOf(root, "cleanupCardSlot");
    const double metrics = topOf(root, "metricsSection");
    const double power = topOf(root, "powerCard");
    const double footer = topOf(root, "footer");
    EXPECT_EQ(header, 16);
    EXPECT_LE(header, cleanup);
    EXPECT_LT(cleanup, metrics);
    EXPECT_LT(metrics, power);
    EXPECT_LT(power, footer);
    EXPECT_EQ(named(root, "metricsSection")->width(), 320 - 32);

    // As tall as the content: no screen, so the limit is 740.
    EXPECT_EQ(root->height(), root->property("contentHeight").toDouble());
    EXPECT_LE(root->height(), 740);
}

TEST(PopoverRender, ReadingsAndTheirFormats) {
    PopoverPreview preview(PreviewState::fromJson(exampleState("en", "white")));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    const QStringList texts = visibleTexts(preview.root());
    for (const char* expected : {"12.0 / 16.0 GB", "75%", "23%", "4.0 W", "4.00 W", "1.00 W",
                                 "0.00 W", "4 cores", "Test Chip", "Updated every 1s", "Quit"})
        EXPECT_TRUE(texts.contains(QString::fromUtf8(expected))) << expected;
    // Collapsed: the per-core strip instead of the process list.
    EXPECT_TRUE(named(preview.root(), "coreStrip")->isVisible());
    EXPECT_FALSE(named(preview.root(), "topCPUList")->isVisible());
}

TEST(PopoverRender, ExpandedSectionsShowTheirProcesses) {
    PopoverPreview preview(
        PreviewState::fromJson(exampleState("en", "white", QJsonArray{"cpu", "memory"})));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    const QStringList texts = visibleTexts(preview.root());
    EXPECT_TRUE(texts.contains("compiler"));
    EXPECT_TRUE(texts.contains("150%"));
    EXPECT_TRUE(texts.contains(QStringLiteral("Collecting…"))); // the empty memory list
    EXPECT_FALSE(named(preview.root(), "coreStrip")->isVisible());
}

TEST(PopoverRender, KoreanLabelsInKorean) {
    PopoverPreview preview(PreviewState::fromJson(exampleState("ko", "white")));
    ASSERT_TRUE(preview.root()) << preview.errors().toStdString();
    preview.render();
    const QStringList texts = visibleTexts(preview.root());
    for (const char* expected :
         {"언어", "고양이", "로그인 시 자동 실행", "1초마다 갱신", "종료", "한국어"})
        EXPECT_TRUE(texts.contains(QString::fromUtf8(expected))) << expected;
    EXPECT_FALSE(texts.contains("Quit"));
    EXPECT_FALSE(texts.contains("Language"));
}

// Pixels of the logo within a few levels of `colour`.
int logoPixelsOf(PopoverPreview& preview, QColor colour) {
    const QImage image = preview.render();
    QQuickItem* logo = named(preview.root(), "logo");
    const QRectF area = logo->mapRectToItem(preview.root(), logo->boundingRect());
    const qreal ratio = image.devicePixelRatio();
    int count = 0;
    for (int y = int(area.top() * ratio); y < int(area.bottom() * ratio); ++y)
        for (int x = int(area.left() * ratio); x < int(area.right() * ratio); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (std::abs(pixel.red() - colour.red()) <= 3 &&
                std::abs(pixel.green() - colour.green()) <= 3 &&
                std::abs(pixel.blue() - colour.blue()) <= 3)
                ++count;
        }
    return count;
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

} // namespace
} // namespace quelmo
