#pragma once

#include <QPoint>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "Tests/Soak/Dice.h"
#include "Tests/Soak/FilePanels.h"

// Hands that know no aim: they click, drag, turn the wheel, type and hold keys in the window that
// is in front, mostly where a control is.
class RandomUser {
 public:
  // `show` brings the program back when no window of it is to be seen.
  RandomUser(Dice& dice, FilePanels& panels, std::function<void()> show)
      : m_dice(dice), m_panels(panels), m_show(std::move(show)) {}

  // Does one thing and returns it in words. What it opens runs on when this returns, or has run to
  // its end. `tell` gets the words before they become true.
  void act(const std::function<void(const std::string&)>& tell);

 private:
  using Tell = std::function<void(const std::string&)>;

  QWidget* front();
  QWidget* control(QWidget& window);
  void click(QWidget& window, const Tell& tell);
  void drag(QWidget& window, const Tell& tell);
  void turnWheel(QWidget& window, const Tell& tell);
  void hitKey(QWidget& window, const Tell& tell);
  void holdKey(QWidget& window, const Tell& tell);
  void type(QWidget& window, const Tell& tell);
  QPoint placeIn(QWidget& widget);

  Dice& m_dice;
  FilePanels& m_panels;
  std::function<void()> m_show;
  std::vector<int> m_held;
  int m_time = 0;
};
