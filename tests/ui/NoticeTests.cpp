#include "ui/QtEnvironment.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Label.h"
#include "ui/kit/Notice.h"

#include <gtest/gtest.h>

namespace vellmark::kit {
namespace {

QString longReason() {
    return QStringLiteral("The agent did not say what went wrong. ").repeated(8).left(300);
}

/// As wide as in the popover, with a button.
Label* wordsOf(Notice& notice, const QString& words) {
    Notice::Look look;
    look.words = words;
    look.buttonWords = "Read again";
    notice.setLook(look);
    notice.resize(398, notice.heightForWidth(398));
    return tests::partNamed<Label>(notice, words);
}

TEST(Notice, ShowsTwoLinesOfAReasonAndSaysWhereThereIsMore) {
    const QString twoLines = longReason().left(117).trimmed();
    for (const QString& reason : {longReason(), QString(300, u'x'), twoLines}) {
        Notice notice;
        const Label* words = wordsOf(notice, reason);
        ASSERT_NE(words, nullptr);
        EXPECT_EQ(words->height(), 2 * style::text.lineHeight);
        EXPECT_EQ(notice.height(), 2 * style::text.lineHeight + 16);
        EXPECT_EQ(words->isShortened(), reason != twoLines);
    }
}

} // namespace
} // namespace vellmark::kit
