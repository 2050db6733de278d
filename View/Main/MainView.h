#pragma once

#include <QMenu>
#include <QPointer>
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Action/Record/Outcome.h"
#include "Action/Record/Records.h"
#include "Kit/Core/LXNotificationCenter.h"
#include "Kit/Core/LXTreeNode.h"
#include "Kit/Core/ProcessWide.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXNoTitleWindow.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "View/Screen/TavImageView.h"
#include "View/Windows/StatusLine.h"

class ChangesList;
class ChildView;
class LXButton;
class LXTextField;
class MainSubView1;
class MainSubView2;
class ProgressLine;
class LanguageMenu;
class QPushButton;
class SlotReasonLine;

// The root of the pop-up menu of library profiles, created once and refilled.
inline ProcessWide<std::shared_ptr<LXTreeNode>> profileNode;

// The content of the main window. The user selects one of the mouse's ten slots, puts a library
// profile on it or begins a new one, edits it, and applies it to the mouse, the library and the
// background service. Also tracks whether the mouse is connected.
class MainView : public TavImageView,
                 public LXSetpPanelDelegate,
                 public LXMenulistDelegate,
                 public LXWindowDelegate {
  Q_OBJECT

 public:
  static constexpr const char* webPage = "https://nerin.example/register";

  explicit MainView(QWidget* parent = nullptr);
  ~MainView() override;

  // --- Controls ----------------------------------------------------------------------------

  void buttonAction(LXButton& sender) override;
  bool shouldSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override;
  void onProfileTextChange();

  void refreshData() override;
  void fillSettingData() override;
  void fillBtnCaption(int index);
  void refreshProfileMenu();
  // Shows what others did in the library's folder.
  void followLibrary();
  void refreshApplyBtn();
  // The name of a mouse button (0..15) by its place: "Left button".
  static QString physicalButtonName(int index);

  // --- What is edited ------------------------------------------------------------------------

  // Opens the list of what Apply would change.
  void showChanges();
  void undoEdit();
  void redoEdit();

  // --- The slot ----------------------------------------------------------------------------

  Outcome getFwProfileDataPro(int slot);
  Outcome setFwProfileDataPro(int slot);
  static Outcome saveLinkApp();
  void applyPro();
  void resetPro();
  // Gives up the edit, and shows what the mouse holds.
  void readSlotAgain();
  // Keeps what is edited, here and in an open child window, where no end of the program loses it.
  void keepDrafts();

  // --- Profiles ----------------------------------------------------------------------------

  void addProfile();
  void copyProfile();
  void delProfile();
  void undoDelete();
  void extentProfile();
  void importProfile();
  void reNamePro();
  void showLaunchPro();
  void setSelectedProfileProById(std::uint64_t profileId, const std::optional<std::string>& name);
  // Whether the profile may get the name: no factory profile and no other library profile has it.
  static bool checkProfileName(const std::string& name);

  // --- Reassigning a button ----------------------------------------------------------------

  // Whether button i (0..15) can be reassigned while some button keeps the primary click.
  bool checkOnlyLeft(int i) const;
  bool checkOnlyLeftPro();
  bool IsCurrSelectedBtn() const;
  std::int32_t selBtnIndex() const { return m_selBtnIndex; }

  // --- Child windows -----------------------------------------------------------------------

  void showMacroView();
  void showLightView();
  void showPerformanceView();
  void showKeyAssignView();
  void windowWillClose(LXNoTitleWindow& window) override;
  // The number of open child windows.
  std::int32_t isModalSeron() const { return m_isModalSeron; }

  // --- The mouse comes and goes ------------------------------------------------------------

  // Takes a report of the background service. Called on any thread.
  void devReportPro(const LXUserInfo& userInfo);
  void checkDevPro();
  void outPlusePro();
  void changeProfilePro(std::int32_t slot);
  void dpiChangePro(std::int32_t value);
  void subWindowEndOutplus();
  bool isOutPlus() const { return m_isOutPlus; }
  bool isDevOnTag() const { return m_isDevOnTag; }

  // --- The application menu, help and the end ----------------------------------------------

  QMenu& applicationMenu() { return m_menu; }
  // Speaks another language from now on, in everything that is shown; none for the system's.
  void changeLanguage(const std::optional<std::string>& code);
  void refreshOsdMenu();
  void osdClick();
  void refreshSwitchMenu();
  void switchClick();
  void menuNeedsUpdate();
  static void connectTtsSite();
  void openHelpPro();
  static void closeAppPro();
  // The same, and gives up the edit of the current slot.
  static void cancelPro();
  static void reluanchAppPro();
  // These notifications have no effect.
  void ShowToolTip() {}
  void HideToolTip() {}

 signals:
  void aboutRequested();

 protected:
  void initData() override;
  void initControls() override;
  void initNotify() override;
  void deallocNotify() override;

 private:
  static constexpr int slotTabs = 10;

  struct Control;
  static const std::vector<Control>& controls();

  void initButtons();
  void initNameField();
  void initStepPanels();
  void initMaps();
  void initMenu();
  void initTabOrder();
  void initShortcuts();
  void initStatus();
  // The texts that no control brings along, in the language of now.
  void showTexts();

  void selectSlot(int newIndex, int oldIndex);
  void selectMode(int newIndex, int oldIndex);
  void raiseNeedSave();
  void sayHowSlotIs(const Outcome& outcome);
  void sayIfSpelled(const std::string& wanted, const std::string& name);
  void showDraftMarks();
  void catchUp();
  void beginProfile(const std::string& name);
  void focusName();
  void showSlotTitle();
  void showTitle(const std::optional<std::string>& name);
  void showName();
  void showLinkPath();
  // In the drawings of the mouse.
  void showLights();
  bool hasRoomForProfile() const;
  static int currentSlot();
  void initChanges();
  void fillChanges();
  void takeBackChange(int row);
  void step(bool (*go)(), const char* text, const StatusLine::Offer& back);
  void showEdit();
  // The focus goes to where the work goes on, since Apply is not enabled any more.
  void focusAfterApply();

  // Opens a window that owns the view.
  void openChild(ChildView* view, int dragHeight, const char* titleKey);
  void handOver(void (MainView::*work)(std::int32_t), std::int32_t value);
  void outPlusReported(std::int32_t value);
  void takeReportedSlot(std::int32_t value);
  // Looks for the mouse, and reports what changed since the last look.
  void lookForMouse();
  // Shows why the mouse cannot be used until it can. False to quit.
  bool waitForMouse();
  void resumeWithMouse();

  LXButton* m_reDefBtn = nullptr;
  LXButton* m_homeBtn = nullptr;
  LXButton* m_helpBtn = nullptr;
  LXButton* m_closeBtn = nullptr;
  LXButton* m_menuBtn = nullptr;
  std::array<LXButton*, slotTabs> m_profileBtns{};
  LXButton* m_normalModeBtn = nullptr;
  LXButton* m_battleModeBtn = nullptr;
  LXButton* m_MacroSettingBtn = nullptr;
  LXButton* m_currProfileBtn = nullptr;
  LXButton* m_profileNewBtn = nullptr;
  LXButton* m_profileDelBtn = nullptr;
  LXButton* m_profileSaveBtn = nullptr;
  LXButton* m_profileImportBtn = nullptr;
  LXButton* m_profileExportBtn = nullptr;
  LXButton* m_preformanceBtn = nullptr;
  LXButton* m_lightOptionBtn = nullptr;
  LXButton* m_linkProChk = nullptr;
  LXButton* m_linkProBtn = nullptr;
  LXButton* m_applyBtn = nullptr;
  LXButton* m_okBtn = nullptr;
  LXButton* m_cancelBtn = nullptr;
  LXButton* m_goLeftBtn = nullptr;
  LXButton* m_goRightBtn = nullptr;
  LXTextField* m_profileNameTxt = nullptr;
  MainSubView1* m_subView1 = nullptr;
  MainSubView2* m_subView2 = nullptr;
  ProgressLine* m_progressBar = nullptr;
  StatusLine* m_statusLine = nullptr;
  std::unique_ptr<SlotReasonLine> m_slotReason;
  QPushButton* m_changesBtn = nullptr;
  ChangesList* m_changesList = nullptr;
  // One for each slot, over its tab: the slot has edits that are not applied.
  std::array<QWidget*, slotTabs> m_draftMarks{};
  std::unique_ptr<LXMenulist> m_profileList;
  QMenu m_menu;
  QAction* m_aboutMenu = nullptr;
  QAction* m_osdMenu = nullptr;
  QAction* m_switchMenu = nullptr;
  QAction* m_webMenu = nullptr;
  QAction* m_helpMenu = nullptr;
  QAction* m_quitMenu = nullptr;
  std::unique_ptr<LanguageMenu> m_languageMenu;
  LXSetpPanelObj* m_profileStep = nullptr;
  LXSetpPanelObj* m_modeStep = nullptr;
  LXSetpPanelObj* m_subViewStep = nullptr;
  // In the order of the record's buttons, which is not the order of the tags.
  std::array<LXButton*, buttonCount> m_btnArrs{};

  std::int32_t m_selBtnIndex = -1;
  std::int32_t m_isModalSeron = 0;
  // The open child window; never more than one.
  QPointer<LXNoTitleWindow> m_child;
  QPointer<ChildView> m_childView;
  // What the child window's profile was when it opened.
  std::optional<_Nerin_PROFILE> m_childBefore;
  // The slot that the mouse changed to while a child window was open.
  std::optional<std::int32_t> m_missedSlot;
  // The latest slot that was reported and not yet shown; slotTabs for none.
  std::atomic<std::int32_t> m_reportedSlot = slotTabs;
  bool m_areMacrosBack = false;
  // The texts are English because no font has the letters of the user's language.
  bool m_isLanguageUnreadable = false;
  // Written on the thread that delivers the service's reports.
  std::atomic<bool> m_isOutPlus = false;
  std::atomic<bool> m_isDevOnTag = false;
  // The message about the missing mouse is open.
  std::atomic<bool> m_isAskingForMouse = false;
  // Tells when to look for the mouse; null where only the background service can.
  std::shared_ptr<void> m_presenceWatch;
  // Called when it tells; empty while nothing follows.
  std::function<void()> m_whenPresenceTold;
  bool m_isMouseSeen = false;
  // The mouse was seen to go, and has not been read anew since.
  bool m_hasGone = false;
  bool m_isFWChangeProfile = false;
  bool m_isFillSetting = false;
  bool m_isShowingEdit = false;
  bool m_isFirstOpen = false;
  std::string m_lochelpPath;
};
