#include "Controls.h"

#include "ui/kit/MenuButton.h"
#include "ui/kit/MenuPanel.h"
#include "ui/kit/Picker.h"

#include <QHelpEvent>
#include <QToolTip>

#include <gtest/gtest.h>

namespace ventolith::ui {
namespace {

class MenuButtonTest : public ::testing::Test {
protected:
  MenuButtonTest() {
    button = &stage.put<MenuButton>(MenuButtonKind::pullDown);
    button->setTitle(QStringLiteral("Balanced"));
    button->setSymbol(Symbol::sliders);
    button->setRows([this] {
      ++asked;
      return rows();
    });
    stage.show();
  }

  std::vector<MenuRow> rows() {
    return {
        {.title = QStringLiteral("Automatic"), .symbol = Symbol::uturn, .action = [this] { chose("auto"); }},
        MenuRow::divider(),
        {.title = QStringLiteral("Quiet"),
         .isEnabled = false,
         .toolTip = QStringLiteral("Not now"),
         .action = [this] { chose("quiet"); }},
        {.title = QStringLiteral("R&D"), .mark = MenuMark::prefixed, .action = [this] { chose("r&d"); }},
        {.title = QStringLiteral("Delete"), .role = MenuRole::destructive, .action = [this] {
           chose("delete");
         }}};
  }
  void chose(const char* what) { chosen.emplace_back(what); }
  MenuPanel& menu() { return button->menu(); }
  QPoint middleOf(int row) { return menu().actionGeometry(menu().actionOf(row)).center(); }

  int asked = 0;
  std::vector<std::string> chosen;
  Stage stage;
  MenuButton* button;
};

TEST_F(MenuButtonTest, OpensOnThePressAndAsksForItsRowsThen) {
  EXPECT_EQ(asked, 0);
  QTest::mousePress(button, Qt::LeftButton);
  EXPECT_TRUE(button->isMenuOpen());
  EXPECT_EQ(asked, 1);
}

TEST_F(MenuButtonTest, OpensByKeys) {
  for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter, Qt::Key_Down, Qt::Key_Up}) {
    QTest::keyPress(button, key);
    EXPECT_TRUE(button->isMenuOpen()) << key;
    menu().close();
    EXPECT_FALSE(button->isDown()) << key;
  }
}

TEST_F(MenuButtonTest, DisabledItStaysClosed) {
  button->setEnabled(false);
  QTest::mousePress(button, Qt::LeftButton);
  QTest::keyClick(button, Qt::Key_Down);
  button->openMenu();
  EXPECT_FALSE(button->isMenuOpen());
}

TEST_F(MenuButtonTest, RefreshedMenuKeepsTheRowThatIsChosen) {
  button->openMenu();
  menu().setActiveAction(menu().actionOf(3));
  button->refreshMenu();
  EXPECT_EQ(menu().activeAction(), menu().actionOf(3));
}

TEST_F(MenuButtonTest, RefreshedMenuTellsRowsOfOneTitleApart) {
  button->setRows([] {
    return std::vector<MenuRow>{{.title = QStringLiteral("Custom")},
                                {.title = QStringLiteral("Custom")},
                                {.title = QStringLiteral("Custom")}};
  });
  button->openMenu();
  menu().setActiveAction(menu().actionOf(1));
  button->refreshMenu();
  EXPECT_EQ(menu().activeAction(), menu().actionOf(1));
}

TEST_F(MenuButtonTest, WithoutRowsItStaysClosed) {
  button->setRows([] { return std::vector<MenuRow>(); });
  QTest::mousePress(button, Qt::LeftButton);
  EXPECT_FALSE(button->isMenuOpen());
  EXPECT_FALSE(button->isDown());
}

TEST_F(MenuButtonTest, OpenItTakesTheControlsFill) {
  button->openMenu();
  EXPECT_EQ(button->grab().toImage().pixelColor(5, 14), stage.theme.palette().controlBackground);
  menu().close();
  EXPECT_EQ(button->grab().toImage().pixelColor(5, 14), stage.theme.palette().buttonBackground);
}

TEST_F(MenuButtonTest, PressedOpenAndClosedItHasNoTraceOfThePress) {
  QTest::mousePress(button, Qt::LeftButton);
  EXPECT_EQ(button->grab().toImage().pixelColor(5, 14), stage.theme.palette().controlBackground);
  QTest::keyClick(&menu(), Qt::Key_Escape);
  EXPECT_EQ(button->grab().toImage().pixelColor(5, 14), stage.theme.palette().buttonBackground);
}

TEST_F(MenuButtonTest, TheMenuOpensFiveBelowWithLeadingEdgesAligned) {
  button->openMenu();
  const QPoint panel = menu().mapToGlobal(menu().panel().topLeft());
  EXPECT_EQ(panel, button->mapToGlobal(QPoint(0, button->height() + 5)));
  EXPECT_GE(menu().panel().width(), 190);
}

TEST_F(MenuButtonTest, RowsAndDividersHaveTheirHeights) {
  button->openMenu();
  EXPECT_EQ(menu().actionGeometry(menu().actionOf(0)).height(), 26);
  EXPECT_EQ(menu().actionGeometry(menu().actionOf(1)).height(), 11);
  EXPECT_EQ(menu().panel().height(), 6 + 4 * 26 + 11 + 6);
}

TEST_F(MenuButtonTest, AClickOnARowChoosesItAndCloses) {
  button->openMenu();
  QTest::mouseClick(&menu(), Qt::LeftButton, {}, middleOf(3));
  EXPECT_EQ(chosen, (std::vector<std::string>{"r&d"}));
  EXPECT_FALSE(button->isMenuOpen());
}

TEST_F(MenuButtonTest, ADisabledRowIsNotChosen) {
  button->openMenu();
  QTest::mouseClick(&menu(), Qt::LeftButton, {}, middleOf(2));
  EXPECT_TRUE(chosen.empty());
}

TEST_F(MenuButtonTest, ArrowKeysPassDividersAndDisabledRows) {
  button->openMenu();
  QTest::keyClick(&menu(), Qt::Key_Down);
  EXPECT_EQ(menu().activeAction(), menu().actionOf(0));
  QTest::keyClick(&menu(), Qt::Key_Down);
  EXPECT_EQ(menu().activeAction(), menu().actionOf(3));
  QTest::keyClick(&menu(), Qt::Key_Return);
  EXPECT_EQ(chosen, (std::vector<std::string>{"r&d"}));
}

TEST_F(MenuButtonTest, EscapeAndAPressOutsideThePanelClose) {
  button->openMenu();
  QTest::keyClick(&menu(), Qt::Key_Escape);
  EXPECT_FALSE(button->isMenuOpen());
  button->openMenu();
  QTest::mousePress(&menu(), Qt::LeftButton, {}, QPoint(3, 3)); // In the shadow.
  EXPECT_FALSE(button->isMenuOpen());
  EXPECT_TRUE(chosen.empty());
}

TEST_F(MenuButtonTest, APressOnItsButtonClosesItForGood) {
  button->openMenu();
  const QPoint onButton = menu().mapFromGlobal(button->mapToGlobal(button->rect().center()));
  QTest::mousePress(&menu(), Qt::LeftButton, {}, onButton);
  EXPECT_FALSE(button->isMenuOpen());
  EXPECT_TRUE(menu().testAttribute(Qt::WA_NoMouseReplay));
  button->openMenu();
  QTest::mousePress(&menu(), Qt::LeftButton, {}, QPoint(-200, 300));
  EXPECT_FALSE(menu().testAttribute(Qt::WA_NoMouseReplay));
}

TEST_F(MenuButtonTest, TheRowUnderThePointerIsFilledWithTheAccent) {
  button->openMenu();
  menu().setActiveAction(menu().actionOf(4));
  const QRect row = menu().actionGeometry(menu().actionOf(4));
  const QImage picture = menu().grab().toImage();
  EXPECT_EQ(picture.pixelColor(row.right() - 8, row.center().y()), stage.theme.palette().accentFill);
  const QRect other = menu().actionGeometry(menu().actionOf(0));
  EXPECT_EQ(picture.pixelColor(other.right() - 8, other.center().y()), stage.theme.palette().menuBackground);
}

TEST_F(MenuButtonTest, WhereNothingShowsThroughTheMenuIsCutToItsPanel) {
  button->openMenu();
  const QRect shadowed = menu().panel().translated(menu().pos());
  menu().close();
  stage.theme.force({.reduceMotion = true, .seeThrough = false});
  button->openMenu();
  EXPECT_EQ(menu().panel(), menu().rect());
  EXPECT_EQ(menu().geometry(), shadowed);
  EXPECT_FALSE(menu().mask().contains(QPoint(0, 0)));
  EXPECT_TRUE(menu().mask().contains(QPoint(20, 0)));
  QTest::mouseClick(&menu(), Qt::LeftButton, {}, middleOf(3));
  EXPECT_EQ(chosen, (std::vector<std::string>{"r&d"}));
  stage.theme.force({.reduceMotion = true, .seeThrough = true});
  button->openMenu();
  EXPECT_EQ(menu().panel().translated(menu().pos()), shadowed);
  EXPECT_TRUE(menu().mask().isEmpty());
}

TEST_F(MenuButtonTest, RowsMayChangeWhileOneIsCarriedOut) {
  button->setRows([this]() -> std::vector<MenuRow> {
    return {{.title = QStringLiteral("Again"), .action = [this] {
               menu().setRows({{.title = QStringLiteral("Other")}});
               chose("again");
             }}};
  });
  button->openMenu();
  QTest::mouseClick(&menu(), Qt::LeftButton, {}, middleOf(0));
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(chosen, (std::vector<std::string>{"again"}));
  EXPECT_EQ(menu().actions().size(), 1);
}

TEST_F(MenuButtonTest, RowsSpeakTheirTitlesMarksAndStates) {
  button->openMenu();
  QAccessibleInterface& its = spoken(menu());
  EXPECT_EQ(its.role(), QAccessible::PopupMenu);
  ASSERT_EQ(its.childCount(), 5);
  EXPECT_EQ(its.child(0)->role(), QAccessible::MenuItem);
  EXPECT_EQ(its.child(0)->text(QAccessible::Name), QStringLiteral("Automatic"));
  EXPECT_EQ(its.child(1)->role(), QAccessible::Separator);
  EXPECT_TRUE(its.child(2)->state().disabled);
  EXPECT_EQ(its.child(3)->text(QAccessible::Name), QStringLiteral("\u2713 R&D"));
}

TEST_F(MenuButtonTest, SpeaksAsAButtonWithAMenu) {
  QAccessibleInterface& its = spoken(*button);
  EXPECT_EQ(its.role(), QAccessible::ButtonMenu);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Balanced"));
  EXPECT_TRUE(its.state().hasPopup);
  EXPECT_FALSE(its.state().expanded);
  its.actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
  EXPECT_TRUE(its.state().expanded);
  button->setAccessibleName(QStringLiteral("Preset"));
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Preset"));
  EXPECT_EQ(its.text(QAccessible::Value), QStringLiteral("Balanced"));
}

TEST_F(MenuButtonTest, OnlyARowWithAReasonHasAToolTip) {
  button->openMenu();
  const auto pointAt = [this](int row) {
    QHelpEvent event(QEvent::ToolTip, middleOf(row), menu().mapToGlobal(middleOf(row)));
    QApplication::sendEvent(&menu(), &event);
    return QToolTip::text();
  };
  EXPECT_EQ(pointAt(0), QString());
  EXPECT_EQ(pointAt(2), QStringLiteral("Not now"));
  QToolTip::hideText();
}

TEST(MenuPanel, ARowOfItsOwnHasNoneBeyondTheLast) {
  Theme theme;
  MenuPanel menu(theme);
  menu.setRows({{.title = QStringLiteral("Rename")}});
  EXPECT_EQ(menu.actionOf(-1), nullptr);
  EXPECT_EQ(menu.actionOf(1), nullptr);
  EXPECT_EQ(menu.rowOf(nullptr), nullptr);
}

TEST(MenuPanel, AMenuLongerThanTheScreenStaysOnIt) {
  Stage stage;
  auto& button = stage.put<MenuButton>(MenuButtonKind::inLine);
  button.setTitle(QStringLiteral("Hottest"));
  button.setRows([] {
    std::vector<MenuRow> rows;
    for (int sensor = 0; sensor < 65; ++sensor)
      rows.push_back({.title = QString::number(sensor)});
    return rows;
  });
  stage.show();
  button.openMenu();
  ASSERT_TRUE(button.isMenuOpen());
  EXPECT_LE(button.menu().height(), button.screen()->availableGeometry().height());
  QTest::keyClick(&button.menu(), Qt::Key_End);
  EXPECT_EQ(button.menu().activeAction(), button.menu().actionOf(64));
  const QRect last = button.menu().actionGeometry(button.menu().actionOf(64));
  EXPECT_TRUE(button.menu().panel().contains(last));
}

class PickerTest : public ::testing::Test {
protected:
  PickerTest() {
    picker = &stage.put<ChoicePicker<std::optional<int>>>();
    picker->setLabel(QStringLiteral("Source sensor"));
    picker->setChoices(
        {{std::nullopt, QStringLiteral("Hottest")}, {7, QStringLiteral("CPU")}, {9, QStringLiteral("GPU")}});
    picker->setChosen(std::optional<int>());
    picker->onChosen(picker, [this](const std::optional<int>& id) { heard.push_back(id); });
    stage.show();
  }

  void choose(int row) {
    picker->openMenu();
    const QPoint place = picker->menu().actionGeometry(picker->menu().actionOf(row)).center();
    QTest::mouseClick(&picker->menu(), Qt::LeftButton, {}, place);
  }

  std::vector<std::optional<int>> heard;
  Stage stage;
  ChoicePicker<std::optional<int>>* picker;
};

TEST_F(PickerTest, ShowsTheChosenTitle) {
  EXPECT_EQ(picker->title(), QStringLiteral("Hottest"));
  picker->setChosen(9);
  EXPECT_EQ(picker->title(), QStringLiteral("GPU"));
  EXPECT_TRUE(heard.empty());
}

TEST_F(PickerTest, AChoiceIsShownAndHeardByItsIdentifier) {
  choose(2);
  EXPECT_EQ(picker->title(), QStringLiteral("GPU"));
  choose(0);
  EXPECT_EQ(heard, (std::vector<std::optional<int>>{9, std::nullopt}));
}

TEST_F(PickerTest, TheSameChoiceAgainIsNotHeard) {
  choose(0);
  EXPECT_TRUE(heard.empty());
}

TEST_F(PickerTest, AnIdentifierWithoutAnEntryShowsNone) {
  picker->setChosen(400);
  EXPECT_EQ(picker->title(), QString());
  EXPECT_EQ(picker->current(), std::nullopt);
  picker->setChoices({{400, QStringLiteral("Back")}});
  EXPECT_EQ(picker->title(), QStringLiteral("Back"));
}

TEST_F(PickerTest, ChoicesThatMoveTakeTheChosenOneWithThem) {
  picker->setChosen(7);
  picker->setChoices({{9, QStringLiteral("GPU")}, {7, QStringLiteral("CPU")}});
  EXPECT_EQ(picker->current(), 1);
  EXPECT_EQ(picker->title(), QStringLiteral("CPU"));
}

TEST_F(PickerTest, ChoicesThatChangeUnderAnOpenMenuAreTheOnesThatAreChosen) {
  picker->openMenu();
  picker->setChoices({{11, QStringLiteral("SSD")}, {7, QStringLiteral("CPU")}});
  const QPoint place = picker->menu().actionGeometry(picker->menu().actionOf(0)).center();
  QTest::mouseClick(&picker->menu(), Qt::LeftButton, {}, place);
  EXPECT_EQ(heard, (std::vector<std::optional<int>>{11}));
}

TEST_F(PickerTest, TheMenuOpensOnTheChosenRowWithACheckMark) {
  picker->setChosen(7);
  picker->openMenu();
  EXPECT_EQ(picker->menu().activeAction(), picker->menu().actionOf(1));
  EXPECT_TRUE(picker->menu().actionOf(1)->isChecked());
  EXPECT_FALSE(picker->menu().actionOf(0)->isChecked());
}

TEST_F(PickerTest, IsAsWideAsItIsToBeButNeverWiderThanItMayBe) {
  picker->setPreferredWidth(180);
  EXPECT_EQ(picker->sizeHint(), QSize(180, 28));
  picker->setMaximumWidth(220);
  picker->setChoices({{1, QString(80, QLatin1Char('x'))}});
  EXPECT_EQ(picker->sizeHint(), QSize(220, 28));
}

TEST_F(PickerTest, DisabledItIsNotOpened) {
  picker->setEnabled(false);
  QTest::mousePress(picker, Qt::LeftButton);
  EXPECT_FALSE(picker->isMenuOpen());
}

TEST_F(PickerTest, SpeaksAsAComboBoxWithTheTitleAsItsValue) {
  QAccessibleInterface& its = spoken(*picker);
  EXPECT_EQ(its.role(), QAccessible::ComboBox);
  EXPECT_EQ(its.text(QAccessible::Name), QStringLiteral("Source sensor"));
  EXPECT_EQ(its.text(QAccessible::Value), QStringLiteral("Hottest"));
  EXPECT_TRUE(its.state().hasPopup);
  EXPECT_TRUE(its.state().expandable);
}

} // namespace
} // namespace ventolith::ui
