#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QJSEngine>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTest>
#include <cstring>
#include <mutex>
#include <set>
#include <utility>

#include "Panel/Placing/BesideAnchor.h"
#include "Panel/Placing/KWinPlacer.h"
#include "Panel/Placing/SwayPlacer.h"
#include "Support/Eventually.h"
#include "Support/TempFolder.h"
#include "Tools/Desktop/PrivateBus.h"

namespace tobrin {
namespace {

TEST(BesideAnchor, IsNextToTheBarAndWithinTheRoom) {
  const QRect room(0, 30, 1000, 700);
  struct Row {
    QPoint anchor;
    QSize size;
    QPoint corner;
  };
  for (const Row& row :
       {Row{{500, 15}, {300, 400}, {350, 30}}, Row{{500, 700}, {300, 400}, {350, 292}},
        Row{{990, 15}, {300, 400}, {700, 30}}, Row{{2, 728}, {300, 700}, {0, 30}},
        Row{{500, 60}, {1200, 900}, {0, 30}}})
    EXPECT_EQ(besideAnchor(row.anchor, row.size, room), row.corner)
        << row.anchor.x() << ", " << row.anchor.y();
  const QRect low(1920, 0, 1366, 738);
  EXPECT_EQ(lowestOf({{0, 0, 1920, 1050}, low, {3286, 0, 1080, 1920}}), low);
  EXPECT_EQ(lowestOf({}), QRect());
}

/// The side of sway in a conversation.
class FakeSway {
 public:
  explicit FakeSway(const QString& path) { server_.listen(path); }

  /// The next message as "type payload", empty where none comes.
  std::string hear() {
    if (client_ == nullptr &&
        (server_.hasPendingConnections() || server_.waitForNewConnection(2000)))
      client_ = server_.nextPendingConnection();
    if (client_ == nullptr || !has(header)) return {};
    const QByteArray head = client_->read(header);
    const auto length = static_cast<qint64>(number(head, 6));
    if (!head.startsWith("i3-ipc") || !has(length)) return {};
    return (QByteArray::number(number(head, 10)) + " " + client_->read(length)).toStdString();
  }

  /// Says it in two pieces, as a socket may.
  void say(quint32 type, const QJsonObject& content) {
    const QByteArray payload = QJsonDocument(content).toJson(QJsonDocument::Compact);
    const auto length = static_cast<quint32>(payload.size());
    QByteArray message = "i3-ipc";
    message.append(reinterpret_cast<const char*>(&length), sizeof length);
    message.append(reinterpret_cast<const char*>(&type), sizeof type).append(payload);
    client_->write(message.first(9));
    client_->flush();
    QTest::qWait(1);
    client_->write(message.sliced(9));
    client_->flush();
  }

  bool isLeft(int patience) {
    return QTest::qWaitFor([&] { return client_->state() == QLocalSocket::UnconnectedState; },
                           patience);
  }

 private:
  static constexpr qint64 header = 14;

  bool has(qint64 bytes) {
    return QTest::qWaitFor([&] { return client_->bytesAvailable() >= bytes; }, 2000);
  }

  static quint32 number(const QByteArray& bytes, qsizetype place) {
    quint32 result = 0;
    std::memcpy(&result, bytes.constData() + place, sizeof result);
    return result;
  }

  QLocalServer server_;
  QLocalSocket* client_ = nullptr;
};

QJsonObject windowAppeared(qint64 id, qint64 process) {
  return {{"change", "new"}, {"container", QJsonObject{{"id", id}, {"pid", process}}}};
}

/// A screen of 1280 x 1000 with a bar of 30 at its upper edge.
QJsonObject treeWith(const char* type) {
  const auto rect = [](int x, int y, int width, int height) {
    return QJsonObject{{"x", x}, {"y", y}, {"width", width}, {"height", height}};
  };
  const QJsonObject panel{{"id", 21}, {"type", type}, {"rect", rect(920, 0, 360, 890)}};
  const QJsonObject workspace{{"id", 4},
                              {"type", "workspace"},
                              {"rect", rect(0, 30, 1280, 970)},
                              {"floating_nodes", QJsonArray{panel}}};
  return {{"id", 1},
          {"nodes", QJsonArray{QJsonObject{{"id", 2}, {"nodes", QJsonArray{workspace}}}}}};
}

TEST(SwayPlacer, MovesItsOwnFloatingWindowBelowTheBar) {
  int count = 0;
  QCoreApplication application(count, nullptr);
  const testing::TempFolder folder;
  const QString path = QString::fromStdString((folder.path() / "sway").string());
  constexpr quint32 event = 0x80000003;
  for (const char* const type : {"floating_con", "con"}) {
    SwayPlacer placer(path);
    EXPECT_FALSE(SwayPlacer::isOfThisSession(path, "sway")) << "a session that has ended";
    placer.placeNext();  // nobody is there: nothing comes of it
    FakeSway sway(path);
    EXPECT_TRUE(SwayPlacer::isOfThisSession(path, "sway"));
    EXPECT_FALSE(SwayPlacer::isOfThisSession(path, "Kubuntu:KDE")) << "of another session";
    placer.placeNext();
    ASSERT_EQ(sway.hear(), R"(2 ["window"])");
    sway.say(2, {{"success", true}});
    sway.say(event, windowAppeared(20, 1));
    sway.say(event, windowAppeared(21, QCoreApplication::applicationPid()));
    EXPECT_EQ(sway.hear(), "0 [con_id=21] move position pointer");
    EXPECT_EQ(sway.hear(), "4 ");
    sway.say(0, {});
    sway.say(4, treeWith(type));
    if (type[0] == 'f') {
      EXPECT_EQ(sway.hear(), "0 [con_id=21] move absolute position 912 px 38 px");
      EXPECT_FALSE(sway.isLeft(50)) << "before it has been done";
      sway.say(0, {});
    }
    EXPECT_TRUE(sway.isLeft(2000)) << "a tile stays in its place";
  }
}

/// A KWin that forgets a script only at the message after the one that unloads it.
class SlowKWin {
 public:
  int started() {
    const std::scoped_lock lock(mutex_);
    return started_;
  }
  /// How many scripts it has that were not unloaded.
  std::size_t kept() {
    const std::scoped_lock lock(mutex_);
    return scripts_.size() - scripts_.count(leaving_);
  }

 private:
  enum class Call { load, unload, start };

  template <Call kind>
  static int take(sd_bus_message* call, void* self, sd_bus_error*) {
    auto& kwin = *static_cast<SlowKWin*>(self);
    const std::scoped_lock lock(kwin.mutex_);
    const std::string before = std::exchange(kwin.leaving_, "");
    const char *file = "", *name = "";
    if (kind == Call::load) {
      sd_bus_message_read(call, "ss", &file, &name);
      if (kwin.scripts_.insert(name).second) kwin.waiting_ = name;
    } else if (kind == Call::unload) {
      sd_bus_message_read(call, "s", &name);
      if (kwin.scripts_.contains(name)) kwin.leaving_ = name;
    } else {
      kwin.started_ += static_cast<int>(kwin.scripts_.count(std::exchange(kwin.waiting_, "")));
    }
    kwin.scripts_.erase(before);
    return sd_bus_reply_method_return(call, "");
  }

  static constexpr sd_bus_vtable methods[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("loadScript", "ss", "", &take<Call::load>, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_METHOD("unloadScript", "s", "", &take<Call::unload>, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_METHOD("start", "", "", &take<Call::start>, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_VTABLE_END};

  std::mutex mutex_;
  std::set<std::string> scripts_;
  std::string leaving_, waiting_;  // unloaded by the last message; not yet started
  int started_ = 0;
  testing::BusService service_{&sd_bus_open_user,        "org.kde.KWin", "/Scripting",
                               "org.kde.kwin.Scripting", methods,        this};
};

TEST(KWinPlacer, PlacesEveryPanelThatOpensSoonAfterAnother) {
  int count = 0;
  const QCoreApplication application(count, nullptr);
  const testing::PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
  SlowKWin kwin;
  {
    KWinPlacer placer("script");
    for (int opening = 1; opening <= 3; ++opening) {
      placer.placeNext();
      EXPECT_TRUE(testing::eventually([&] { return kwin.started() == opening; })) << opening;
    }
    EXPECT_EQ(kwin.kept(), 1U);
  }
  EXPECT_TRUE(testing::eventually([&] { return kwin.kept() == 0; }));
}

/// What KWin offers its scripts; `names` is what a version calls things.
QString kwin(const char* names) {
  return QString(R"(
    function signal() {
      const hearers = [];
      const raise = (...what) => hearers.slice().forEach(each => each(...what));
      raise.connect = each => hearers.push(each);
      raise.disconnect = each => hearers.splice(hearers.indexOf(each), 1);
      return raise;
    }
    function makeWindow(name, extra) {
      return Object.assign({ resourceClass: name, normalWindow: true, fullScreenChanged: signal(),
                             windowClassChanged: signal(),
                             frameGeometry: { x: 5, y: 5, width: 360, height: 800 } }, extra);
    }
    var added = signal(), activated = signal(), told = [], stack = [];
    var KWin = { PlacementArea: 1 };
    var callDBus = (name, path, interface, member, app, full) => told.push(app + (full ? " full" : ""));
    var workspace = { clientArea: () => ({ x: 0, y: 0, width: 1280, height: 956 }),
                        cursorPos: { x: 1200, y: 980 }, %1 };
    function where(window) {
      return Object.values(window.frameGeometry).join(" ");
    })")
      .arg(names);
}

constexpr const char* plasma5 =
    "clientAdded: added, clientActivated: activated, clientList: () => stack, activeClient: null";
constexpr const char* plasma6 =
    "windowAdded: added, windowActivated: activated, stackingOrder: [], activeWindow: null";

class KWinScripts : public ::testing::TestWithParam<const char*> {
 protected:
  KWinScripts() { run(kwin(GetParam())); }

  std::string run(const QString& text) {
    const QJSValue result = engine_.evaluate(text);
    EXPECT_FALSE(result.isError())
        << result.toString().toStdString() << ":" << result.property("lineNumber").toInt();
    return result.toString().toStdString();
  }

  void load(const char* name) {
    QFile file(QString(TOBRIN_KWIN_SCRIPTS "/") + name);
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    run(QString::fromUtf8(file.readAll()));
  }

  /// Makes a window the one in front.
  void activate(const QString& window) {
    run(QString("workspace.activeWindow = workspace.activeClient = %1; activated(%1);")
            .arg(window));
  }

 private:
  int count_ = 0;
  QCoreApplication application_{count_, nullptr};
  QJSEngine engine_;
};

TEST_P(KWinScripts, PlaceThePanelOnceAboveALowerBar) {
  load("place-panel.js");
  run("var editor = makeWindow('editor'), panel = makeWindow('app.tobrin.Tobrin');"
      "added(editor); added(panel);");
  EXPECT_EQ(run("where(editor)"), "5 5 360 800");
  EXPECT_EQ(run("where(panel) + panel.skipTaskbar"), "912 148 360 800true");
  run("var window = makeWindow('app.tobrin.Tobrin'); added(window);");
  EXPECT_EQ(run("where(window)"), "5 5 360 800") << "one that opens later has a place";
}

TEST_P(KWinScripts, TellWhichApplicationIsInFront) {
  run("var editor = makeWindow('Editor'), film = makeWindow('film', { fullScreen: true }),"
      "      panel = makeWindow('app.tobrin.Tobrin');"
      "stack.push(editor, panel); workspace.stackingOrder = stack;"
      "workspace.activeWindow = workspace.activeClient = panel;");
  load("front-window.js");
  EXPECT_EQ(run("told.splice(0).join()"), "Editor,app.tobrin.Tobrin")
      << "first what is behind the panel";
  activate("film");
  run("film.fullScreen = false; film.fullScreenChanged();");
  activate("null");
  run("film.fullScreenChanged();");
  EXPECT_EQ(run("told.splice(0).join()"), "film full,film,");
}

INSTANTIATE_TEST_SUITE_P(Plasma, KWinScripts, ::testing::Values(plasma5, plasma6),
                         [](const auto& version) { return version.param == plasma5 ? "5" : "6"; });

}  // namespace
}  // namespace tobrin
