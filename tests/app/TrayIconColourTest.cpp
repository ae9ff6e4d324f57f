#include "app/tray/ScissorsIcon.h"
#include "app/tray/XEmbedTrayBackground.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

// The highest contrast any drawn pixel of `icon` has with `panel`, as a person would see the
// icon drawn over it.
double iconContrast(const QImage& icon, const QColor& panel) {
    QImage shown(icon.size(), QImage::Format_RGB32);
    shown.fill(panel);
    QPainter(&shown).drawImage(0, 0, icon);
    double best = 1;
    for (int y = 0; y < shown.height(); ++y)
        for (int x = 0; x < shown.width(); ++x)
            best = std::max(best, scissors::contrastRatio(shown.pixelColor(x, y), panel));
    return best;
}

} // namespace

TEST(TrayIconColourTest, TheIconStandsOutFromLightAndDarkPanels) {
    EXPECT_NEAR(scissors::contrastRatio(Qt::black, Qt::white), 21.0, 1e-9);
    EXPECT_NEAR(scissors::contrastRatio(QColor("#777777"), QColor("#777777")), 1.0, 1e-9);

    const QColor paletteText("#303030");
    // The icon hosts load by name and draw as it is (Cinnamon), at a panel's icon size.
    const QTemporaryDir folder;
    ASSERT_TRUE(scissors::exportTo(folder.path(), paletteText, false));
    QSvgRenderer named(folder.path() + '/' + scissors::iconName + ".svg");
    ASSERT_TRUE(named.isValid());
    QImage namedIcon(22, 22, QImage::Format_ARGB32_Premultiplied);
    namedIcon.fill(Qt::transparent);
    QPainter painter(&namedIcon);
    named.render(&painter);
    painter.end();
    // tint2's and Budgie's panels, Cinnamon's, a mid grey, a light panel.
    for (const QColor panel : {QColor("#000000"), QColor("#2b2b2b"), QColor("#555555"),
                               QColor("#757575"), QColor("#f0f0f0")}) {
        SCOPED_TRACE(panel.name().toStdString());
        const QColor tint = scissors::tintOn(panel, paletteText);
        EXPECT_GE(scissors::contrastRatio(tint, panel), scissors::minimumContrast);
        EXPECT_GE(iconContrast(scissors::render(22, tint), panel), scissors::minimumContrast);
        // The pixels given to hosts, whatever their panel.
        EXPECT_GE(iconContrast(scissors::renderWithRim(22, paletteText), panel),
                  scissors::minimumContrast);
        EXPECT_GE(iconContrast(namedIcon, panel), scissors::minimumContrast);
    }
    // A colour that already stands out is kept.
    EXPECT_EQ(scissors::tintOn(QColor("#f0f0f0"), paletteText), paletteText);
}

TEST(TrayIconColourTest, ThePanelIsTheColourMostPixelsAroundTheIconHave) {
    // A 3-pixel ring of dark panel around a 22×22 icon, a light neighbour icon on its left and
    // a one-pixel border line at the top.
    QImage pixels(28, 28, QImage::Format_RGB32);
    pixels.fill(QColor("#202020"));
    const QRect hole(3, 3, 22, 22);
    for (int y = 0; y < 28; ++y)
        for (int x = 0; x < 3; ++x)
            pixels.setPixelColor(x, y, QColor("#e0e0e0"));
    for (int x = 0; x < 28; ++x)
        pixels.setPixelColor(x, 0, QColor("#808080"));
    // The icon itself (all white) must not count.
    for (int y = hole.top(); y <= hole.bottom(); ++y)
        for (int x = hole.left(); x <= hole.right(); ++x)
            pixels.setPixelColor(x, y, Qt::white);
    EXPECT_EQ(dominantColourAround(pixels, hole), QColor("#202020"));

    // Transparent pixels (a compositing tray) and a ring too thin to read say nothing.
    QImage clear(28, 28, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    EXPECT_EQ(dominantColourAround(clear, hole), std::nullopt);
    EXPECT_EQ(dominantColourAround(pixels.copy(2, 2, 24, 24), QRect(0, 0, 24, 24)), std::nullopt);
}
