#include "support/Child.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;
using zenka::test::Child;

namespace {

struct Switches : testing::Test {
    zenka::test::TempFolder folder;
    const fs::path& home = folder.path();

    struct Result {
        std::string output;
        int status = 0;
    };

    Result zenka(std::vector<std::string> arguments, const std::string& setting = "NOTHING=") const {
        arguments.insert(arguments.begin(), ZENKA_EXECUTABLE);
        // On a desktop too there is nothing that a window could be shown on.
        Child child(arguments, {"HOME=" + home.string(), "XDG_CONFIG_HOME=", "XDG_DATA_HOME=", "TZ=UTC",
                                "DISPLAY=", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM=", setting});
        std::string output = child.readRest();
        return {std::move(output), child.wait()};
    }

    std::string file(const std::string& name, const std::string& text) const {
        std::ofstream(home / name) << text;
        return home / name;
    }
};

std::string lastLine(const std::string& text) {
    const auto end = text.find_last_not_of('\n');
    const auto begin = text.rfind('\n', end);
    return text.substr(begin + 1, end - begin);
}

} // namespace

TEST_F(Switches, validatePrintsTheEngineBesideItsReferences) {
    const Result result = zenka({"--validate"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "Validating: Total Solar Eclipse of 2024 April 08\n"
                             "\n"
                             "Dallas, TX\n"
                             "  total=true mag=1.0149 obsc=1.000 totality=231.5s\n"
                             "  C2 18:40:43 UT (ref 18:40:43)  alt 64° az 186°\n"
                             "  C3 18:44:34 UT (ref 18:44:31)\n"
                             "  sunrise 12:05:15 UT  sunset 00:52:54 UT\n"
                             "\n"
                             "Carbondale, IL\n"
                             "  total=true mag=1.0262 obsc=1.000 totality=248.4s\n"
                             "  C2 18:59:17 UT (ref 18:59:25)  alt 56° az 208°\n"
                             "  C3 19:03:25 UT (ref 19:03:33)\n"
                             "  sunrise 11:30:43 UT  sunset 00:26:53 UT\n"
                             "\n"
                             "Cleveland, OH\n"
                             "  total=true mag=1.0219 obsc=1.000 totality=228.9s\n"
                             "  C2 19:13:46 UT (ref 19:13:46)  alt 48° az 221°\n"
                             "  C3 19:17:34 UT (ref 19:17:36)\n"
                             "  sunrise 10:57:01 UT  sunset 00:00:31 UT\n"
                             "\n"
                             "Script compile: 999 captures, 1 diagnostics, cameras=[\"G9M2\"]\n"
                             "  first off=-944.8s (Pre 0.1%), last off=3624.6s (C2 −2s)\n");
}

TEST_F(Switches, compilePrintsBothEndsOfTheScript) {
    const std::string script =
        file("a script.zenka", "TAKEPIC,C2,+,00:01,CAM1,BULB,AUTO,AUTO,0,RAW,None,N,one\n"
                               "TAKEPIC,C2,+,00:02,CAM2,1/500,5.6,200,0,RAW,None,N,two\n"
                               "nonsense\n");
    const Result result = zenka({"--compile", script});
    EXPECT_EQ(result.status, 0);
    const std::string both = "   #1    18:59:18.1  CAM1  ISO0    f/0 BULB  : one\n"
                             "   #2    18:59:19.1  CAM2  ISO200  f/5.6 1/500  : two\n";
    EXPECT_EQ(result.output, "Compiled " + script +
                                 "\n"
                                 "  2 captures · cameras=[\"CAM1\", \"CAM2\"] · 1 diagnostics\n"
                                 "  first 5 and last 3 captures (absolute UTC at Carbondale):\n" +
                                 both + both + "   L3 warning: unknown command 'nonsense'\n");
    EXPECT_EQ(zenka({"--compile", "/no/such/file"}).output, "cannot read /no/such/file\n");
    const std::string latin1 = file("latin1.zenka", "# caf\xE9\n");
    EXPECT_EQ(zenka({"--compile", latin1}).output, "cannot read " + latin1 + "\n");
}

TEST_F(Switches, analyzeComparesACardWithAScript) {
    const std::string script =
        file("plan.zenka", "TAKEPIC,C2,+,00:01,CAM1,1/500,8.0,100,0,RAW,None,N,one\n"
                           "TAKEPIC,C2,+,00:03,CAM1,1/250,8.0,100,0,RAW,None,N,two\n"
                           "TAKEPIC,C2,+,00:05,CAM1,1/125,8.0,100,0,RAW,None,N,three\n");
    const auto shot = [&](const std::string& name, const std::string& date, unsigned shutter) {
        zenka::test::writeFile(home / "my card/DCIM" / name,
                               zenka::test::jpegFile({.date = date,
                                                      .subSec = "250",
                                                      .iso = 100,
                                                      .fNumber = {8, 1},
                                                      .exposureTime = {1, shutter}}));
    };
    shot("early.jpg", "2024:04:08 11:00:00", 500);
    shot("<img src=x onerror=alert(1)>.jpg", "2024:04:08 13:00:00", 500);
    shot("b.jpg", "2024:04:08 13:00:02", 250);
    const fs::path report = "/tmp/zenka_analyzer_cli.html";
    fs::remove(report);
    const Result result = zenka({"--analyze", script, (home / "my card").string() + "/"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "ANALYZE plan.zenka  vs  my card\n"
                             "  card frames: 3  | isolated run: 2  | expected: 3\n"
                             "  PASS=false  count 2/3  ISO 2/2  F 2/2  shutter 2/2\n"
                             "  jitter mean ±0ms max ±0ms over 1 intervals  | duration 00m 02s\n"
                             "  mismatches: 1\n"
                             "    three: 0/1 landed\n"
                             "  [html -> /tmp/zenka_analyzer_cli.html]\n");
    EXPECT_TRUE(fs::exists(report));
    EXPECT_EQ(zenka({"--analyze", "/no/such/file", home}).output, "cannot read /no/such/file\n");
    EXPECT_THAT(
        zenka({"--analyze", file("empty.zenka", ""), "/no/such/card"}).output,
        testing::AllOf(testing::HasSubstr("PASS=false  count 0/0"), testing::HasSubstr("duration ?")));
}

TEST_F(Switches, usbNamesPrintsWhatIsPluggedInAndUsbHoldersWhoHasItOpen) {
    const std::string machine = file("machine.umockdev", "P: /devices/usb1/1-1\n"
                                                         "N: bus/usb/001/007\n"
                                                         "E: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\n"
                                                         "A: busnum=1\\n\nA: devnum=7\\n\n"
                                                         "A: idVendor=054c\\n\nA: idProduct=0994\\n\n"
                                                         "A: product=ILCE-7M4 é\\n\nA: manufacturer=Sony\\n\n"
                                                         "A: serial=D123\\n\n"
                                                         "\n"
                                                         "P: /devices/usb1/1-2\n"
                                                         "E: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\n"
                                                         "A: busnum=1\\n\nA: devnum=12\\n\n"
                                                         "A: idVendor=04b0\\n\nA: idProduct=0453\\n\n"
                                                         "A: product=NIKON DSC Z 8\\n\n"
                                                         "\n"
                                                         "P: /devices/usb1/1-3\n"
                                                         "E: SUBSYSTEM=usb\nE: DEVTYPE=usb_device\n"
                                                         "A: busnum=1\\n\nA: devnum=13\\n\n"
                                                         "A: idVendor=05ac\\n\nA: idProduct=0001\\n\n"
                                                         "A: product=Keyboard\\n\n");
    // a sanitizer wants to come first, and the mock has to
    const auto onMachine = [&](const std::string& script) {
        Child child({"umockdev-run", "--device", machine, "--", "sh", "-c", script, ZENKA_EXECUTABLE},
                    {"HOME=" + home.string(), "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0"});
        return child.readRest();
    };
    EXPECT_EQ(
        onMachine("\"$0\" --validate --usb-names"),
        "USB devices with a product string (Apple-internal hidden):\n"
        "  ILCE-7M4 é                  vendor=Sony          vid=1356 pid=2452  -> usb:001,007  serial=D123\n"
        "      display name -> ILCE-7M4 é\n"
        "  NIKON DSC Z 8               vendor=?             vid=1200 pid=1107  -> usb:001,012  serial=-\n"
        "      display name -> Nikon DSC Z 8\n");
    const std::string head = "User clients on USB devices with vid=0x054C:\n";
    const std::string none = "  (no devices of that vendor, or no holders besides this process)\n";
    EXPECT_EQ(onMachine("\"$0\" --usb-holders"), head + none);
    EXPECT_EQ(onMachine("exec 3< /dev/bus/usb/001/007; \"$0\" --usb-holders 54c 3<&-"), head + "  sh\n");
    EXPECT_EQ(onMachine("exec 3< /dev/bus/usb/001/007; \"$0\" --usb-holders zz 3<&-"), head + "  sh\n");
    EXPECT_EQ(onMachine("\"$0\" --usb-holders 0x04a9"),
              "User clients on USB devices with vid=0x04A9:\n" + none);
}

TEST_F(Switches, theOrderIsTheTablesAndAMissingValueFallsThrough) {
    EXPECT_TRUE(zenka({"--compile", "--validate"}).output.starts_with("Validating: "))
        << "--validate comes first";
    EXPECT_TRUE(zenka({"x", "--rehearse", "nothing", "--compile", "nowhere"})
                    .output.starts_with("cannot read nowhere"));
    EXPECT_EQ(zenka({"--compile"}).output, "") << "starts the application";
    EXPECT_EQ(zenka({"--validated"}).output, "") << "exact comparison";
    EXPECT_EQ(zenka({"--rehearse"}).output, "");
    EXPECT_TRUE(zenka({"--export-web", "/proc/none", "--og", "/proc/picture"})
                    .output.starts_with("cannot write /proc/picture"));
    EXPECT_TRUE(zenka({"--og", "/proc/picture", "--icon", "/proc/icon"})
                    .output.starts_with("cannot write /proc/icon"));
    EXPECT_TRUE(zenka({"--rehearse", "nothing", "--export-web", "/proc/none", "--og"})
                    .output.starts_with("cannot write /proc/none/"));
}

TEST_F(Switches, picturesAreWrittenAsPngsAndWithoutAFontThereIsNone) {
    const auto sizeOf = [&](const std::string& path) {
        std::ifstream stream(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        const auto number = [&](std::size_t at) {
            int value = 0;
            for (std::size_t i = at; i < at + 4 && i < bytes.size(); ++i)
                value = value << 8 | static_cast<unsigned char>(bytes[i]);
            return value;
        };
        return bytes.starts_with("\x89PNG") ? std::to_string(number(16)) + " x " + std::to_string(number(20))
                                            : "no picture";
    };
    const std::string picture = home / "new folder/picture.png";
    for (const auto& [name, size] : {std::pair{"--icon", "1024 x 1024"}, std::pair{"--og", "1200 x 630"}}) {
        const Result result = zenka({name, picture});
        EXPECT_EQ(result.status, 0) << name;
        EXPECT_EQ(result.output, "") << name;
        EXPECT_EQ(sizeOf(picture), size) << name;
        EXPECT_EQ(zenka({name, home}).output, "cannot write " + home.string() + "\n");
    }
    const std::string noFonts = file("fonts.conf", "<fontconfig><cachedir>/tmp</cachedir></fontconfig>");
    const Result result = zenka({"--og", home / "boxes.png"}, "FONTCONFIG_FILE=" + noFonts);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "cannot write " + (home / "boxes.png").string() +
                                 ": there is no font to write its words with, such as DejaVu Sans\n");
    EXPECT_FALSE(fs::exists(home / "boxes.png"));
}

TEST_F(Switches, rehearsalsOfTheExamplesFireEveryFrame) {
    struct Case {
        const char* script;
        std::vector<std::string> place;
    };
    const std::vector<Case> cases{
        {"total-two-bodies.zenka", {}},
        {"annular-solar-filter.zenka",
         {"2027-02-06", "-37.85", "-58.26", "100", "America/Argentina/Buenos_Aires"}},
        {"partial-timelapse.zenka", {"2026-08-12", "48.857", "2.352", "35", "Europe/Paris"}},
    };
    int examples = 0;
    for (const auto& entry : fs::directory_iterator(fs::path(ZENKA_SOURCE_DIR) / "examples"))
        examples += entry.path().extension() == ".zenka";
    EXPECT_EQ(examples, static_cast<int>(cases.size())) << "each example is rehearsed";
    for (const Case& example : cases) {
        std::vector<std::string> arguments{"--rehearse",
                                           fs::path(ZENKA_SOURCE_DIR) / "examples" / example.script};
        arguments.insert(arguments.end(), example.place.begin(), example.place.end());
        const Result result = zenka(arguments);
        EXPECT_EQ(result.status, 0);
        const std::string last = lastLine(result.output);
        EXPECT_EQ(result.output.find("warning:"), std::string::npos) << result.output;
        EXPECT_EQ(result.output.find("error:"), std::string::npos) << result.output;
        EXPECT_TRUE(last.starts_with("Rehearsed ")) << last;
        EXPECT_NE(last.find(", 0 dropped, 0 skipped. Largest lateness 0.0 ms. Run log: "), std::string::npos)
            << last;
        const std::string csv = last.substr(last.find("Run log: ") + 9);
        EXPECT_TRUE(fs::exists(csv)) << csv;
        EXPECT_TRUE(fs::exists(fs::path(csv).replace_extension(".json")));
    }
}

TEST_F(Switches, aRehearsalTakesTheGivenPlaceAndSaysWhatIsWrongWithOne) {
    const std::string script = file("s.zenka", "TAKEPIC,MAX,+,00:00,CAM1,1/500,8,100,0,RAW,None,N,x\n"
                                               "COMMAND,MAX,-,00:10, , , , , , , , ,Lights;touch " +
                                                   (home / "ran").string() + "\n");
    const Result result = zenka({"--rehearse", script, "2027-08-02", "25.7", "32.6", "80", "Africa/Cairo"});
    EXPECT_NE(result.output.find("Total Solar Eclipse of 2027 August 02"), std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("13:05:"), std::string::npos) << "the site's local time";
    EXPECT_TRUE(lastLine(result.output).starts_with("Rehearsed 1 captures on 1 bodies: 1 frames ok"));
    EXPECT_NE(result.output.find("⚙︎ MAX −10s: Lights"), std::string::npos);
    EXPECT_FALSE(fs::exists(home / "ran")) << "a rehearsal runs no commands";

    const auto fault = [&](const std::vector<std::string>& place) {
        std::vector<std::string> arguments{"--rehearse", script};
        arguments.insert(arguments.end(), place.begin(), place.end());
        return zenka(arguments).output;
    };
    EXPECT_TRUE(fault({"1999-08-11", "1", "2", "3", "UTC"}).starts_with("no eclipse \"1999-08-11\""));
    EXPECT_TRUE(fault({"2027-08-02", "91", "2", "3", "UTC"}).starts_with("cannot read the latitude \"91\""));
    EXPECT_TRUE(fault({"2027-08-02", "1", "x", "3", "UTC"}).starts_with("cannot read the longitude"));
    EXPECT_TRUE(fault({"2027-08-02", "1", "2", "3", "Egypt/Luxor"}).starts_with("unknown time zone"));
    EXPECT_EQ(zenka({"--rehearse", "/no/such"}).output, "cannot read /no/such\n");
}

TEST_F(Switches, aRehearsalLeavesTheRunAloneThatTheWindowMayResume) {
    const std::string script = file("s.zenka", "TAKEPIC,MAX,+,00:00,CAM1,1/500,8,100,0,RAW,None,N,x\n");
    const fs::path own = home / ".local/share/ZenkaRig";
    zenka({"--rehearse", script});
    EXPECT_FALSE(fs::exists(own));
    fs::create_directories(own);
    const std::string record = "{\"version\": 1, \"armKind\": \"real\"}";
    file(".local/share/ZenkaRig/run-state.json", record);
    EXPECT_NE(zenka({"--rehearse", script}).output.find("1 frames ok"), std::string::npos);
    std::ifstream kept(own / "run-state.json");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(kept), {}), record);
}

TEST_F(Switches, aRehearsalWhoseLogCannotBeWrittenStillRuns) {
    const std::string script = file("s.zenka", "TAKEPIC,MAX,+,00:00,CAM1,1/500,8,100,0,RAW,None,N,x\n");
    file("Documents", "a file where the folder should be");
    const std::string last = lastLine(zenka({"--rehearse", script}).output);
    EXPECT_TRUE(last.starts_with("Rehearsed 1 captures on 1 bodies: 1 frames ok")) << last;
    EXPECT_NE(last.find("Run log: none, cannot write to "), std::string::npos) << last;
}

TEST_F(Switches, sonyTellsWhatItsSdkSeesAndThatThereIsNone) {
    const Result none = zenka({"--validate", "--sony"});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.output, "CrSDK init: FAILED\nCrSDK version: 0x00000000\nSony cameras enumerated: 0\n");

    const Result two = zenka({"--sony"}, "LD_LIBRARY_PATH=" ZENKA_FAKE_CRSDK);
    EXPECT_EQ(two.status, 0);
    EXPECT_EQ(two.output, "CrSDK init: OK\nCrSDK version: 0x01020304\nSony cameras enumerated: 2\n"
                          "  - ILCE-7M4\n  - ILCE-1\n");
}
