#pragma once

#include "cameras/CameraControl.h"
#include "cameras/CameraProfiles.h"

namespace zenka::cameras {

/// The simulated body that a user rehearses with. It fires at once and never fails, and its latencies
/// repeat from run to run.
class MockCamera final : public CameraControl {
public:
    MockCamera(std::string id, std::string model);

    const std::string& id() const override { return id_; }
    const std::string& serial() const override { return serial_; }
    const std::string& model() const override { return model_; }
    std::string backend() const override { return "sim"; }
    bool connected() const override { return connected_; }
    double minIntervalSec() const override { return profile_.minInterval; }
    bool isReal() const override { return false; }
    int shotCount() const override { return shotCount_; }

    void connect() { connected_ = true; }
    void disconnect() override { connected_ = false; }
    void capture(const Shot& shot, CaptureDone done) override;

private:
    std::string id_;
    std::string serial_; // a body without hardware has none
    std::string model_;
    bool connected_ = false;
    CameraProfile profile_;
    int tick_ = 0;
    int shotCount_ = 0;
};

} // namespace zenka::cameras
