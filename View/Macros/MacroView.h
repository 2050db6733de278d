#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Record/Limits.h"
#include "Kit/Core/LXTreeNode.h"
#include "Kit/Core/ProcessWide.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "View/Macros/RecordedKeys.h"
#include "View/Macros/RigthMouseTBView.h"
#include "View/Windows/ChildView.h"

class KeyboardHold;
class LXTextField;
class MacroTest;
class MacroTools;
class MacroWorkbench;
class MenuInfo;
class QInputEvent;
class UsageBar;

// The initial values of the editor's delay fields, in milliseconds, and the delay rule of the
// current recording: 1 measures, 2 takes the field's value, anything else means no delay. They are
// kept until the program ends.
struct MacroDelays {
  std::int32_t delayTime = 50;
  std::int32_t defDelayTime = 50;
  std::int32_t delayType = 1;
};
inline ProcessWide<MacroDelays> macroDelays;

// The macro that was open last, until the program ends. The catalogue owns it.
inline ProcessWide<std::weak_ptr<MacroInfo>> lastOpenMacro;

// The macro editor: the user's library of macros, and the commands of one macro, recorded from the
// keyboard and the mouse. Edits the catalogue's macros directly; saving writes the catalogue's
// file.
class MacroView : public ChildView,
                  public LXMenulistDelegate,
                  public LXSetpPanelDelegate,
                  public LXButtonDelegate,
                  public RigthMouseTBDelegate {
  Q_OBJECT

 public:
  enum Tag : int {
    TagMacroName = 200,
    TagNewMacro,
    TagDelMacro,
    TagCopyMacro,
    TagImportMacro,
    TagExportMacro,
    TagRecord,
    TagStop,
    TagDelKey,
    TagInsertKey,
    TagKeyUp,
    TagKeyDown,
    TagAutoDelay,
    TagDefDelay,
    TagLgnoreDelay,
    TagInsert,
    TagInsertAutoDelay,
    TagInsertDefDelay,
    TagInsertLgnoreDelay,
    TagOk,
    TagCancel,
    TagApply,
    TagInsertRecord = 223,
    TagInsertStop,
    TagInsertInt,
    TagInsertCancel,
    TagTools = 230,
    TagTest,
  };
  // The entries of the insert list: what to record or insert, and where, relative to the selected
  // command.
  enum InsertType : std::int32_t {
    InsertRecordBefore = 1,
    InsertRecordAfter,
    InsertDelayBefore,
    InsertDelayAfter,
  };
  // The choices in both groups of delay controls.
  enum DelayRule : int { DelayMeasured = 1, DelayFixed, DelayNone };
  static constexpr std::size_t maximumCommands = limits::macroEvents;

  MacroView();
  ~MacroView() override;
  std::string helpChapter() const override { return "macros"; }
  // Ends a recording, whose commands are kept, or the choice of a key.
  bool staysOpen() override;

  void refreshData() override;
  void fillSettingData() override;
  void buttonAction(LXButton& sender) override;
  void onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) override;
  bool shouldSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override;
  void onNumTextChange(LXNumberTextField& sender) override;
  void onMacroNameTextChange();
  // The mouse was removed: keeps what was recorded and closes the window.
  void devOutplusPro();

  // --- The library -------------------------------------------------------------------------

  void setSelMacro(const std::shared_ptr<MenuInfo>& entry);
  void setSelMacroByNode(const std::shared_ptr<LXTreeNode>& node);
  // The macro's node in the macro menu, or null.
  static std::shared_ptr<LXTreeNode> getNodeByData(const MacroInfo* macro);
  void renamePro();
  void addMacroPro(const std::shared_ptr<MacroInfo>& macro);
  void addMacorByName(const std::string& name);
  // Named as the user has typed while no macro was open, or by the rule. The name field gets the
  // focus.
  void newMacro();
  void copyMacro();
  void delMacro();
  void extentMacro();
  void importMacro();

  // --- The commands ------------------------------------------------------------------------

  void insertAdjustTim();
  void insertDelayPro();
  void insertComPro(const MenuInfo& entry);
  void insertCom();
  void selectComByIndex(int index);
  void selectLastCom();
  void selectNewCom(const std::shared_ptr<MacroKeyInfo>& command);
  void delCommand();
  void moveCom(bool isDown);
  void upCom() { moveCom(false); }
  void downCom() { moveCom(true); }
  void delAllCommand();

  // --- Recording ---------------------------------------------------------------------------

  void setRecState(bool isRecord, bool isInsert);
  void AddNewKey(std::uint32_t keyCode, std::uint32_t flag);
  void setConCaptureEvent(bool captures);
  // Whether the event is on the Stop button of this recording.
  bool checkMouseEvent(const QMouseEvent& event) const;
  void onMouseEvent(LXButton& button, QEvent& event, int type) override;
  void onMouseEvent(RigthMouseTBView& table, QMouseEvent& event, int type) override;
  // Delete, and Alt with an arrow, do what the buttons under the table do.
  bool onKey(RigthMouseTBView& table, QKeyEvent& event) override;
  void onRowDragged(RigthMouseTBView& table, int row, int gap) override;

  // --- What can be used --------------------------------------------------------------------

  void setConEnable();
  void setConEnableWithMacro();
  void setConEnableWithKey();
  void setInsertState(bool isInsert);
  void setInsertConVisable();

  bool isRecord() const { return m_isRecord; }
  bool isInsert() const { return m_isInsert; }
  bool isInsertRecord() const { return m_isInsertRecord; }
  std::int32_t currInsertType() const { return m_currInsertType; }
  const std::shared_ptr<MacroInfo>& currMacroInfo() const { return m_currMacroInfo; }
  const std::shared_ptr<MacroKeyInfo>& selKeyInfo() const { return m_selKeyInfo; }
  LXMenulist* insertMenulist() const { return m_insertList.get(); }

 protected:
  void initData() override;
  void initControls() override;
  void initNotify() override;
  void deallocNotify() override;
  void applyEdit() override;
  void keepEdit() override;
  void cancelEdit() override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  struct Control;
  static const std::vector<Control>& controls();

  void initButtons();
  void initFields();
  void initDelayGroups();
  void initTable();
  void initWorkbench();
  std::vector<LXButton*> allButtons() const;

  MacroInfo::Events* keyArrs() const;
  int selectedRow() const;
  std::int32_t indexOf(const MacroKeyInfo* command) const;
  void reloadTable();
  void showUsage();
  void selectionChanged();
  void commandsEdited(int row);
  void goToCommand(int row);
  void chooseCommand(int row, bool extends);
  bool hasRoomForMacro() const;
  void findNodeAgain();
  void openLastMacro();

  void startRecording();
  void startInsertRecording();
  void endRecording();
  void startByShortcut();
  void stopByShortcut();
  void takeKeyboard();
  // Adds the releases of the keys that are down, as far as the macro has room.
  void releaseHeldKeys();
  // Removes the last command of the recording if it is the press of such a key.
  void dropLastPress(bool (*isSuchKey)(std::int32_t keyCode));
  void takeKey(const QKeyEvent& event);
  bool takeMouse(const QMouseEvent& event, bool isDown);
  LXButton& activeStop() const;
  void rememberTime(const QInputEvent& event);

  LXButton* m_macroNameBtn = nullptr;
  LXButton* m_newMacroBtn = nullptr;
  LXButton* m_delMacroBtn = nullptr;
  LXButton* m_copyMacroBtn = nullptr;
  LXButton* m_importMacroBtn = nullptr;
  LXButton* m_exportMacroBtn = nullptr;
  LXButton* m_recordBtn = nullptr;
  LXButton* m_stopBtn = nullptr;
  LXButton* m_delKeyBtn = nullptr;
  LXButton* m_insertKeyBtn = nullptr;
  LXButton* m_keyUpBtn = nullptr;
  LXButton* m_keyDownBtn = nullptr;
  LXButton* m_toolsBtn = nullptr;
  LXButton* m_testBtn = nullptr;
  LXButton* m_insertBtn = nullptr;
  LXButton* m_insertRecordBtn = nullptr;
  LXButton* m_insertStopBtn = nullptr;
  LXButton* m_insertIntBtn = nullptr;
  LXButton* m_insertCancelBtn = nullptr;
  LXButton* m_okBtn = nullptr;
  LXButton* m_cancelBtn = nullptr;
  LXButton* m_applyBtn = nullptr;
  LXButton* m_autoDelayChk = nullptr;
  LXButton* m_defDelayChk = nullptr;
  LXButton* m_lgnoreDelayChk = nullptr;
  LXButton* m_insertAutoDelayChk = nullptr;
  LXButton* m_insertDefDelayChk = nullptr;
  LXButton* m_insertLgnoreDelayChk = nullptr;
  LXTextField* m_macroNameTxt = nullptr;
  LXNumberTextField* m_defDelayTxt = nullptr;
  LXNumberTextField* m_insertDefDelayTxt = nullptr;
  LXTextField* m_recordStateTxt = nullptr;
  UsageBar* m_eventBar = nullptr;
  UsageBar* m_memoryBar = nullptr;
  LXSetpPanelObj* m_delaySetp = nullptr;
  LXSetpPanelObj* m_insertDelaySetp = nullptr;
  RigthMouseTBView* m_table = nullptr;
  MacroCommandModel* m_commands = nullptr;
  MacroWorkbench* m_workbench = nullptr;
  MacroTools* m_tools = nullptr;
  MacroTest* m_test = nullptr;
  std::unique_ptr<LXMenulist> m_insertList;

  std::shared_ptr<LXTreeNode> m_selMacroNode;
  std::shared_ptr<MenuInfo> m_currMacroData;
  std::shared_ptr<MacroInfo> m_currMacroInfo;
  std::shared_ptr<MacroKeyInfo> m_selKeyInfo;
  std::shared_ptr<MacroKeyInfo> m_lastKeyInfo;
  std::size_t m_currInsertIndex = 0;
  // Where the recording inserted its first command.
  std::size_t m_recordedFrom = 0;
  bool m_isRecord = false;
  bool m_isInsert = false;
  bool m_isInsertRecord = false;
  bool m_isAddDelay = false;
  bool m_isExtending = false;
  bool m_isInfoShown = false;
  // The event clock in milliseconds; no value before the first event of a recording.
  std::optional<std::uint64_t> m_oldTime;
  std::uint64_t m_eventTime = 0;
  // When the last event was seen, by this machine's clock.
  std::uint64_t m_seenTime = 0;
  std::int32_t m_currDefDelayTim = 0;
  std::int32_t m_currInsertType = 1;
  int m_currDelayType = 1;
  int m_currInsertDelayType = 1;
  RecordedKeys m_keys;
  std::unique_ptr<KeyboardHold> m_keyboard;
  bool m_isKeyElsewhere = false;
  // The mouse buttons that were pressed during the recording, by where that was.
  Qt::MouseButtons m_buttonsOnStop;
  Qt::MouseButtons m_buttonsElsewhere;
};
