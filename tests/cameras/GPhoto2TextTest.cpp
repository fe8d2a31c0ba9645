#include "cameras/gphoto2/GPhoto2Text.h"

#include "cameras/gphoto2/GPhoto2Readiness.h"

#include <gtest/gtest.h>

using namespace zenka::cameras;
using namespace zenka::cameras::GPhoto2Text;

TEST(GPhoto2Text, shutterChoicesReadAsTheBodiesWriteThem) {
    EXPECT_DOUBLE_EQ(parseShutterChoice("1/4000s").value_or(0), 0.00025);
    EXPECT_DOUBLE_EQ(parseShutterChoice(" 2,5 ").value_or(0), 2.5);
    EXPECT_DOUBLE_EQ(parseShutterChoice("0.0100s").value_or(0), 0.01);
    EXPECT_DOUBLE_EQ(parseShutterChoice("10/25").value_or(0), 0.4);
    for (const char* none : {"bulb", "Bulb", "2000/1", "1/0", "1/2/3", "", "Time"})
        EXPECT_EQ(parseShutterChoice(none), std::nullopt) << none;
}

TEST(GPhoto2Text, aShutterWithoutAListIsWrittenPlainly) {
    EXPECT_EQ(shutterArg(2, false), "2");
    EXPECT_EQ(shutterArg(0.002, false), "1/500");
    EXPECT_EQ(shutterArg(1 / 8000.0, false), "1/8000");
    EXPECT_EQ(shutterArg(0.3, false), "0.3");
    EXPECT_EQ(shutterArg(1.3, false), "1.3");
    EXPECT_EQ(shutterArg(30, true), "bulb");
}

TEST(GPhoto2Text, valuesSnapToWhatTheBodyOffersAndTheFirstOfEqualsWins) {
    const ExposureChoices decimals{.shutter = {"bulb", "0.0005s", "0.0050s", "1.0000s"},
                                   .iso = {"Auto", "100", "400"},
                                   .aperture = {"f/4", "f/16", "implicit auto"}};
    EXPECT_EQ(shutterWrite(0.004, false, decimals).text(), "shutterspeed=0.0050s");
    EXPECT_EQ(isoConfig(200, decimals), "100");
    EXPECT_EQ(apertureConfig(8, decimals), "f/4");
    ExposureChoices fractions = decimals;
    fractions.shutterFraction = {"1/250", "1/200", "Bulb"};
    EXPECT_EQ(shutterWrite(0.005, false, fractions).text(), "shutterspeed2=1/200");
    EXPECT_EQ(shutterWrite(0.005, true, fractions).text(), "shutterspeed=bulb");

    EXPECT_EQ(isoConfig(320, {}), "320");
    EXPECT_EQ(apertureConfig(5.6, {}), "f/5.6");
    EXPECT_EQ(apertureConfig(5.6, {.apertureProp = "aperture"}), "5.6");
}

TEST(GPhoto2Text, onlyTheFaultOfTheFiringVerbFailsAShot) {
    const std::string refusedSetting = "gphoto2: {/rig} /> set-config-value iso=400\n"
                                       "*** Error (-110: 'I/O in progress') ***\n"
                                       "gphoto2: {/rig} /> trigger-capture\ntrigger-capture\n";
    EXPECT_EQ(fireErrorLine(refusedSetting + "gphoto2: {/rig} /> ", "trigger-capture", false), std::nullopt);
    EXPECT_EQ(fireErrorLine(refusedSetting + "ERROR: Could not trigger capture.\ngphoto2: {/rig} /> ",
                            "trigger-capture", false),
              "Could not trigger capture.");
    // The folder in the prompt changes after a download.
    EXPECT_EQ(fireErrorLine("gphoto2: {/rig} /> set-config-value iso=4\nERROR: no.\n"
                            "gphoto2: {/rig} /store_00010001/DCIM> capture-image\nNew file is in x\n",
                            "capture-image", true),
              std::nullopt);
    EXPECT_EQ(fireErrorLine("gphoto2: {/rig} /> capture-image\ncapture-image\ngphoto2: {/rig} /> ",
                            "capture-image", true),
              "fired but no frame was stored (capture produced no file)");
    // No echo of the verb: any fault counts.
    EXPECT_EQ(fireErrorLine("*** Error (-1: 'Unspecified error') ***\n", "trigger-capture", false),
              "Error (-1: 'Unspecified error')");
}

TEST(GPhoto2Text, theTailOfADeadSessionReadsWithoutPrompts) {
    EXPECT_EQ(outputTail("gphoto2: {/rig} /> \n", 160), "(no output)");
    EXPECT_EQ(outputTail("gphoto2: {/rig} /> trigger-capture\nPTP I/O Error\n", 13), "PTP I/O Error");
    EXPECT_EQ(outputTail("gphoto2: {/rig} /> gphoto2: {/rig} /> exit\n", 160), "exit");
    EXPECT_EQ(outputTail(std::string(5000, 'x'), 160).size(), 160U);
    EXPECT_EQ(outputTail("Kamera in Köln", 8), "in Köln");
    EXPECT_EQ(outputTail("Kamera in Köln", 3), "ln") << "no half letter";
    EXPECT_EQ(outputTail("\xEF\xBB\xBF", 160), "(no output)");
    EXPECT_EQ(decoded("Andr\xe9"), "André");
}

TEST(GPhoto2Text, listsHoldOnlyWhatIsThereAndReadAsText) {
    EXPECT_EQ(choices("Choice: 0 1/500\nChoice: 1\nChoice:\nChoice: 2  \nChoice: Bulb\n"),
              (std::vector<std::string>{"1/500", "Bulb"}));
    const std::string heading = "Model   Port\n------\n";
    EXPECT_EQ(parseAutodetect(heading + "Andr\xe9  usb:001,\xe9\n no port\n"),
              (std::vector<Detected>{{.model = "André", .port = "usb:001,é"}}));
}

TEST(GPhoto2Text, brandsDecideTheRouteToABody) {
    for (const char* name : {"Olympus E-M1", "OM-1 Mark II", "OM System OM-5", "E-M10", "OMSYSTEM"})
        EXPECT_TRUE(isOlympus(name)) << name;
    EXPECT_FALSE(isOlympus("Custom-1"));
    EXPECT_TRUE(usePersistent("Sony Alpha-A7r", {.nikon = false, .olympus = false}));
    EXPECT_FALSE(usePersistent("Nikon DSC D750", {.nikon = false}));
    EXPECT_TRUE(usePersistent("Olympus E-M1", {}));
    EXPECT_FALSE(usePersistent("Canon EOS R5", {}));
    EXPECT_TRUE(forcesCardTarget("Canon EOS R5"));
    EXPECT_FALSE(forcesCardTarget("Fuji Fujifilm X-T5"));
}

TEST(GPhoto2Text, aCardOfAnotherBodyIsToldByItsLabel) {
    EXPECT_TRUE(labelOfAnotherBody("NIKON D850", "Nikon DSC D750"));
    EXPECT_TRUE(labelOfAnotherBody("EOS_DIGITAL", "Nikon DSC D750 (PTP mode)"));
    EXPECT_TRUE(labelOfAnotherBody("NIKON Z 6", "Sony Alpha-A7 IV"));
    for (const auto& [label, model] : {std::pair("NIKON D750", "Nikon DSC D750"),
                                       {"NIKON Z 6_2", "Nikon Z 62"},
                                       {"EOS_DIGITAL", "Canon EOS R5"},
                                       {"EOS_DIGITAL", "USB PTP Class Camera"},
                                       {"NIKON D750", "USB PTP Class Camera"},
                                       {"", "Nikon DSC D750"},
                                       {"MY CARD", "Nikon DSC D750"}})
        EXPECT_FALSE(labelOfAnotherBody(label, model)) << label << " in " << model;
}

TEST(GPhoto2Text, programsAndAutoISOAreReadInTheBodiesWords) {
    EXPECT_EQ(parseExpProgram("Current: M\n"), (ExpProgram{.isManual = true, .modeName = "M"}));
    EXPECT_EQ(parseExpProgram("Current: Manual\n"), (ExpProgram{.isManual = true, .modeName = "Manual"}));
    EXPECT_EQ(parseExpProgram("Current: A\n"), (ExpProgram{.isManual = false, .modeName = "A"}));
    EXPECT_EQ(parseExpProgram("Current: \n"), std::nullopt);
    EXPECT_EQ(parseExpProgram("ERROR: no\n"), std::nullopt);
    EXPECT_EQ(parseAutoISO(" On"), true);
    EXPECT_EQ(parseAutoISO("0"), false);
    EXPECT_EQ(parseAutoISO("maybe"), std::nullopt);
}

TEST(GPhoto2Readiness, aReadyBodyGetsNoWarningAndEachFaultItsOwn) {
    const GPhoto2Readiness::Answers ready{.cardLabels = {"NIKON D750", ""},
                                          .focusMode = "Manual",
                                          .expProgram = "M",
                                          .captureMode = "Single Shot",
                                          .autoISO = "Off",
                                          .longExposureNR = "Off"};
    EXPECT_TRUE(GPhoto2Readiness::judge(ready, "Nikon DSC D750").empty());
    EXPECT_TRUE(GPhoto2Readiness::judge({}, "Nikon DSC D750").empty());
    const auto warnings = GPhoto2Readiness::judge({.cardLabels = {"EOS_DIGITAL"},
                                                   .focusMode = "AF-S",
                                                   .expProgram = "A",
                                                   .captureMode = "Self-timer",
                                                   .autoISO = "On",
                                                   .longExposureNR = "1"},
                                                  "Nikon DSC D750");
    ASSERT_EQ(warnings.size(), 6U);
    EXPECT_NE(warnings[0].message.find("\"EOS_DIGITAL\") — this body will accept the shutter"),
              std::string::npos);
    EXPECT_TRUE(warnings[1].message.starts_with("focus is AF-S — a remote fire"));
    EXPECT_TRUE(warnings[1].severe);
    EXPECT_EQ(warnings[5].message, "mode dial is on A, not M — the camera will meter its own exposures and "
                                   "reject the script's. Turn the dial to M.");
}
