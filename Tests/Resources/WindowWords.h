#pragma once

// The words that belong to no control and to no menu of functions.

struct WindowWord {
  const char* name;
  const char* text;
};

// Drawn into the pictures, where there is only so much room.
inline constexpr WindowWord pictureWords[] = {
    {"Slot", "Slot"},
    {"Profile name", "Profile name"},
    {"LED mode", "LED mode"},
    {"Normal", "Normal"},
    {"Battle", "Battle"},
    {"Macro editor", "Macro editor"},
    {"Advanced", "Advanced"},
    {"LED", "LED"},
    {"Link to program", "Link to program"},
    {"Choose program", "Choose program…"},
    {"Reset", "Reset"},
    {"OK", "OK"},
    {"Point at a button to find it, click it to change it",
     "Point at a button to find it, click it to change it"},
    {"WarningNoDevice", "The mouse is not connected."},
    {"WarningNoDeviceDetail", "Connect it and press OK to go on, or press Cancel to quit."},
    {"WarningNeedSave", "This profile has changes that have not been applied."},
    {"WarningNeedSaveDetail",
     "Press OK to apply them and change profile, or Cancel to stay on this profile."},
    {"WarningReset", "All settings of this profile will return to their defaults."},
    {"WarningResetDetail", "Press OK to reset the profile, or Cancel to keep it."},
    {"WarningBattle", "The LEDs change to Battle mode."},
    {"WarningNeedLeft", "At least one button must keep the left click."},
    {"WarningNeedLeftDetail", "Give the left click to another button first."},
    {"WarningNoItem", "No profile is selected."},
    {"WarningNoItemDetail", "Select a profile first."},
};

// The menu of the main window, its questions, and the buttons of the mouse by their place: each
// key is its own English text.
inline constexpr const char* plainWords[] = {
    "Menu",
    "About NerinOption",
    "Help",
    "Web page",
    "Quit",
    "Version",
    "Show the profile slot",
    "A file of this name is there already. Replace it?",
    "Left button",
    "Right button",
    "Wheel button",
    "Wheel up",
    "Wheel down",
    "Right front button 1",
    "Right front button 2",
    "Right front button 3",
    "Middle button 1",
    "Middle button 2",
    "Left side button 1",
    "Left side button 2",
    "Left side button 3",
    "Left side button 4",
    "Thumb button 1",
    "Thumb button 2",
};
