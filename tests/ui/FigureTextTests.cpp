#include "ui/kit/FigureText.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace vellmark::kit {
namespace {

/// The drawn line as pixels, black on white.
QImage drawn(const QString& text, const TextStyle& style) {
    QImage image(200, style.lineHeight, QImage::Format_Grayscale8);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    drawText(painter, image.rect(), Qt::AlignLeft, text, style);
    return image;
}

int lastInkedColumn(const QImage& image) {
    for (int x = image.width() - 1; x >= 0; --x) {
        for (int y = 0; y < image.height(); ++y) {
            if (qGray(image.pixel(x, y)) < 128) {
                return x;
            }
        }
    }
    return -1;
}

class FigureText : public ::testing::Test {
protected:
    void SetUp() override {
        if (QFontInfo(QGuiApplication::font()).family() != QLatin1String("Inter")) {
            GTEST_SKIP() << "needs the font Inter, whose figures differ in width";
        }
    }
};

TEST_F(FigureText, AllFiguresHaveOneWidth) {
    for (const TextStyle& style : {style::value, style::figureLarge, style::popoverStatus}) {
        const double zeros = textWidth("000", style);
        for (const char* figures : {"111", "474", "909"}) {
            EXPECT_DOUBLE_EQ(textWidth(QString::fromLatin1(figures), style), zeros) << figures;
        }
    }
}

TEST_F(FigureText, AChangingNumberMovesNothingBehindIt) {
    for (const TextStyle& style : {style::value, style::figure, style::popoverStatus}) {
        const int narrow = lastInkedColumn(drawn("11 % left", style));
        const int wide = lastInkedColumn(drawn("88 % left", style));
        EXPECT_EQ(narrow, wide);
        EXPECT_GT(narrow, 0);
    }
}

TEST_F(FigureText, FractionalSizesAreNotRounded) {
    const auto width = [](double size) {
        return textWidth("read at noon", TextStyle{size, 14, QFont::Medium});
    };
    EXPECT_LT(width(10), width(10.5));
    EXPECT_LT(width(10.5), width(11));
    EXPECT_NEAR(width(10.5), (width(10) + width(11)) / 2, 0.5);
}

TEST_F(FigureText, ShortensOnlyWhatDoesNotFitAndAlwaysIntoTheWidth) {
    const QString text = "Experimental Preview Models · monatlich";
    const double whole = textWidth(text, style::row);
    EXPECT_EQ(elidedText(text, style::row, whole), text);
    for (const double width : {whole - 1, 112.0, 20.0}) {
        const QString shortened = elidedText(text, style::row, width);
        EXPECT_TRUE(shortened.endsWith(u'…'));
        EXPECT_FALSE(shortened.contains(" …"));
        EXPECT_LE(textWidth(shortened, style::row), width);
    }
}

TEST_F(FigureText, BreaksLinesAtSpacesButNeverBetweenANumberAndItsSign) {
    const QString text = "Noch 16\u00a0% übrig, das reicht bis zum nächsten Reset";
    for (const double width : {60.0, 90.0, 140.0}) {
        const QStringList lines = wrappedText(text, style::text, width);
        EXPECT_GT(lines.size(), 1);
        EXPECT_EQ(lines.join(u' '), text);
        for (const QString& line : lines) {
            EXPECT_FALSE(line.endsWith("16"));
            EXPECT_LE(textWidth(line, style::text), width);
        }
    }
    EXPECT_EQ(wrappedText("one\ntwo", style::text, 500),
              QStringList({"one", QStringLiteral("two")}));
}

TEST_F(FigureText, BreaksAWordOnlyWhereItAloneIsTooWideAndEndsTheLastLineWhenThereIsMore) {
    const QString word(300, u'm');
    for (const double width : {60.0, 334.0}) {
        const QStringList lines = wrappedText(QStringLiteral("so ") + word, style::text, width);
        EXPECT_EQ(lines.front(), "so");
        EXPECT_EQ(lines.mid(1).join(QString()), word);
        for (const QString& line : lines) {
            EXPECT_LE(textWidth(line, style::text), width);
        }
        for (const QString& text : {word, QStringLiteral("one two\nthree ").repeated(20)}) {
            const QStringList first = wrappedText(text, style::text, width, 2);
            ASSERT_EQ(first.size(), 2);
            EXPECT_TRUE(first.back().endsWith(u'…'));
            EXPECT_LE(textWidth(first.back(), style::text), width);
        }
    }
    // Narrower than any letter: one a line, and an end.
    EXPECT_EQ(wrappedText("abc", style::text, 1).size(), 3);
}

} // namespace
} // namespace vellmark::kit
