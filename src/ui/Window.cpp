#include "ui/Window.h"

#include "ports/Ports.h"
#include "rig/RigModel.h"
#include "services/GlanceDesk.h"
#include "services/ServiceDesk.h"
#include "ui/CommandList.h"
#include "ui/Commands.h"
#include "ui/bodies/BodyList.h"
#include "ui/bodies/CadenceAlertView.h"
#include "ui/bodies/CameraProfilerView.h"
#include "ui/bodies/CompRulesView.h"
#include "ui/bodies/CompensationView.h"
#include "ui/bodies/GapProfilerView.h"
#include "ui/bodies/LibraryView.h"
#include "ui/bodies/ProfilePostView.h"
#include "ui/bodies/TestShotView.h"
#include "ui/dashboard/CamerasView.h"
#include "ui/dashboard/ChipsView.h"
#include "ui/dashboard/ClockView.h"
#include "ui/dashboard/HealthView.h"
#include "ui/dashboard/TimeView.h"
#include "ui/dashboard/VoiceView.h"
#include "ui/dashboard/WarningsView.h"
#include "ui/framing/FramingItem.h"
#include "ui/framing/FramingView.h"
#include "ui/help/GuideView.h"
#include "ui/kit/AppView.h"
#include "ui/kit/EditTarget.h"
#include "ui/kit/LogView.h"
#include "ui/kit/NightPointer.h"
#include "ui/kit/NightSwitch.h"
#include "ui/kit/Theme.h"
#include "ui/run/AnalyzerView.h"
#include "ui/run/ArmView.h"
#include "ui/run/ChecklistPrinter.h"
#include "ui/run/PreflightView.h"
#include "ui/run/RigTransferView.h"
#include "ui/script/AssistantView.h"
#include "ui/script/ConsentView.h"
#include "ui/script/ScriptView.h"
#include "ui/services/FeedbackView.h"
#include "ui/services/GlanceView.h"
#include "ui/services/QrItem.h"
#include "ui/services/ServiceView.h"
#include "ui/services/UpdatesView.h"
#include "ui/site/EclipseList.h"
#include "ui/site/HorizonItem.h"
#include "ui/site/HorizonView.h"
#include "ui/site/LocationView.h"
#include "ui/site/WorldMapItem.h"
#include "ui/sky/SkyItem.h"
#include "ui/sky/SkyView.h"
#include "ui/timeline/TimelineItem.h"
#include "ui/timeline/TimelineView.h"
#include "ui/wizard/WizardView.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QScreen>
#include <QUrl>

/// The resources of a static library are linked only when they are asked for, outside of any namespace.
static void initResources() {
    Q_INIT_RESOURCE(zenka_ui);
}

namespace zenka::ui {

Window::Window(rig::RigModel& rig, const ports::Ports& ports, services::ServiceDesk& services,
               services::GlanceDesk& glance, const QString& version)
    : rig_(rig), services_(services), glance_(glance), openUrl_(QDesktopServices::openUrl),
      app_(new AppView(rig, version, this)), commands_(new Commands(this)), edit_(new EditTarget(this)),
      engine_(new QQmlApplicationEngine) {
    initResources();
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    theme_ = new Theme(ports.settings, this);
    const auto open = [this](const QUrl& address) { openUrl_(address); };
    auto* analyzer = new AnalyzerView(rig, *app_, open, this);
    auto* preflight = new PreflightView(rig, *app_, this);
    transfer_ = new RigTransferView(rig, ports, *app_, this);
    checklist_ = std::make_unique<ChecklistPrinter>(rig, ports, version.toStdString(), open);
    auto* guide = new GuideView(rig, *app_, *theme_, open, this);
    guide->givePicturesTo(*engine_);
    declareCommands(
        *commands_, rig, *app_, *theme_, *edit_, *analyzer, *preflight, *transfer_, *checklist_, *guide,
        [this] { return quickWindow(); }, open, QString::fromStdString(ports.folders.runLogs().string()));
    new NightSwitch(rig, *theme_, this);
    new NightPointer(*theme_, this);

    SkyItem::registerTypes();
    TimelineItem::registerTypes();
    ScriptView::registerTypes();
    WorldMapItem::registerTypes();
    HorizonItem::registerTypes();
    QrItem::registerTypes();
    FramingItem::registerTypes();
    WizardView::registerTypes();

    QQmlContext& context = *engine_->rootContext();
    context.setContextProperty(QStringLiteral("theme"), theme_);
    context.setContextProperty(QStringLiteral("app"), app_);
    context.setContextProperty(QStringLiteral("guide"), guide);
    context.setContextProperty(QStringLiteral("arming"), new ArmView(rig, *app_, this));
    context.setContextProperty(QStringLiteral("commands"), commands_);
    context.setContextProperty(QStringLiteral("clock"), new ClockView(rig, this));
    context.setContextProperty(QStringLiteral("chips"), new ChipsView(rig, this));
    context.setContextProperty(QStringLiteral("time"), new TimeView(rig, this));
    context.setContextProperty(QStringLiteral("health"), new HealthView(rig, this));
    context.setContextProperty(QStringLiteral("warnings"), new WarningsView(rig, this));
    context.setContextProperty(QStringLiteral("voice"), new VoiceView(rig, this));
    context.setContextProperty(QStringLiteral("preflight"), preflight);
    context.setContextProperty(QStringLiteral("eclipses"), new EclipseList(rig, this));
    context.setContextProperty(QStringLiteral("sky"), new SkyView(rig, ports, this));
    auto* timeline = new TimelineView(rig, ports, this);
    context.setContextProperty(QStringLiteral("timeline"), timeline);
    connect(timeline, &TimelineView::captureClicked, app_, [app = app_](int lineNo) {
        app->openSheet(QStringLiteral("Script"));
        Q_EMIT app->scriptLineWanted(lineNo);
    });
    script_ = new ScriptView(rig, ports, this);
    context.setContextProperty(QStringLiteral("script"), script_);
    context.setContextProperty(QStringLiteral("consent"), new ConsentView(rig, *app_, this));
    auto* wizard = new WizardView(rig, ports, this);
    context.setContextProperty(QStringLiteral("wizard"), wizard);
    connect(wizard, &WizardView::applied, script_, &ScriptView::noteWizard);
    auto* assistant = new AssistantView(rig, ports, *app_, this);
    context.setContextProperty(QStringLiteral("assistant"), assistant);
    connect(assistant, &AssistantView::loaded, script_, &ScriptView::noteAssistant);
    auto* location = new LocationView(rig, ports, this);
    context.setContextProperty(QStringLiteral("location"), location);
    context.setContextProperty(QStringLiteral("horizon"), new HorizonView(rig, ports, *location, this));
    context.setContextProperty(QStringLiteral("cameras"), new CamerasView(rig, this));
    context.setContextProperty(QStringLiteral("testShot"), new TestShotView(rig, this));
    context.setContextProperty(QStringLiteral("bodyList"), new BodyList(rig, this));
    context.setContextProperty(QStringLiteral("framing"), new FramingView(rig, ports, this));
    auto* gapProfiler = new GapProfilerView(rig, this);
    context.setContextProperty(QStringLiteral("gapProfiler"), gapProfiler);
    context.setContextProperty(QStringLiteral("cameraProfiler"), new CameraProfilerView(rig, this));
    context.setContextProperty(QStringLiteral("dropExplainer"),
                               new CadenceAlertView(rig, *app_, *gapProfiler, this));
    context.setContextProperty(QStringLiteral("analyzer"), analyzer);
    context.setContextProperty(QStringLiteral("library"), new LibraryView(rig, this));
    context.setContextProperty(QStringLiteral("compensation"), new CompensationView(rig, this));
    context.setContextProperty(QStringLiteral("compRules"), new CompRulesView(rig, this));
    context.setContextProperty(QStringLiteral("transfer"), transfer_);
    context.setContextProperty(QStringLiteral("updates"), new UpdatesView(ports, version, this));
    app_->setFeedbackGoesOut([&services] { return !services.host()->empty(); });
    context.setContextProperty(QStringLiteral("service"), new ServiceView(services, rig, *app_, this));
    context.setContextProperty(QStringLiteral("feedback"), new FeedbackView(services, *app_, this));
    context.setContextProperty(QStringLiteral("glance"), new GlanceView(glance, this));
    context.setContextProperty(QStringLiteral("profilePost"), new ProfilePostView(services, rig, this));
    context.setContextProperty(QStringLiteral("log"), new LogView(rig, this));
}

Window::~Window() {
    delete engine_; // before the view models that its bindings read
}

bool Window::show() {
    engine_->load(QUrl(QStringLiteral("qrc:/zenka/Main.qml")));
    QQuickWindow* window = quickWindow();
    if (!window)
        return false;
    const QRect room = window->screen() ? window->screen()->availableGeometry() : QRect(0, 0, 1380, 860);
    window->setMinimumSize(QSize(960, 440).boundedTo(room.size()));
    const auto follow = [this, window] { theme_->setRoom(window->size()); };
    connect(window, &QWindow::widthChanged, this, follow);
    connect(window, &QWindow::heightChanged, this, follow);
    window->resize(QSize(1380, 860).boundedTo(room.size()));
    follow();
    window->setTitle(QStringLiteral("Zenka"));
    edit_->watch(*window);
    window->show();
    window->requestActivate();
    rig_.bootstrap();
    services_.start();
    glance_.start();
    return true;
}

void Window::openFile(const QString& path) {
    if (path.endsWith(QLatin1String(rig::RigTransfer::suffix))) {
        transfer_->beginImport();
        transfer_->read(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
        return;
    }
    app_->openSheet(QStringLiteral("Script"));
    script_->open(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
}

void Window::startedAgain(const QString& path) {
    if (QQuickWindow* window = quickWindow()) {
        if (window->visibility() == QWindow::Minimized)
            window->showNormal();
        window->requestActivate();
        window->alert(0); // where no window may come to the front by itself
    }
    if (path.isEmpty())
        return;
    if (rig_.transport().live())
        rig_.log().pushLog(
            "⚠️ “" + QFileInfo(path).fileName().toStdString() +
            "” was not opened: this is a live run. Open it in the script sheet if you mean it.");
    else
        openFile(path);
}

QStringList Window::sheets() {
    QStringList names;
    for (const QString& file : QDir(QStringLiteral(":/zenka")).entryList({QStringLiteral("*Sheet.qml")}))
        names.append(file.chopped(static_cast<int>(qstrlen("Sheet.qml"))));
    return names;
}

QQuickWindow* Window::quickWindow() const {
    const auto roots = engine_->rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.first());
}

} // namespace zenka::ui
