// The real boxes: a box asked in the middle of a busy command shows the normal pointer.
#include "platform/dialogs/QtDialogs.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>

using namespace dialogs;

TEST(QtDialogs, BoksSomMaBesvaresHarVanligPeker)
{
    QWidget eier;
    QtDialogs dialogs(&eier);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    std::vector<Qt::CursorShape> underBoksen;
    const auto lukkNesteBoks = [&] {
        QTimer::singleShot(0, [&] {
            underBoksen.push_back(QApplication::overrideCursor()->shape());
            QApplication::activeModalWidget()->close();
        });
    };
    lukkNesteBoks();
    dialogs.sporJaNei(QStringLiteral("Vil du starte importen?"));
    lukkNesteBoks();
    dialogs.inndata(QStringLiteral("Minste verdi"), ProgramTittel, QStringLiteral("1"));
    EXPECT_EQ(underBoksen, (std::vector{Qt::ArrowCursor, Qt::ArrowCursor}));
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QApplication::restoreOverrideCursor();
}
