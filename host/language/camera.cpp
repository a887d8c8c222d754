// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/camera.h"

#include <filesystem>
#include <limits>

namespace host::language {

void CameraBuilder::begin(const Name& name) { camera_.begin(context_, name, "camera"); }

void CameraBuilder::end()
{
    camera_->record.lens = first(camera_->lens);
    camera_->record.environment = first(camera_->environment);
    camera_->record.volume = first(camera_->volume);
    camera_.end(context_);
}

void CameraBuilder::focal(const Statement& distance)
{
    distance.expect({1});
    camera_->record.focal = distance.positive(0);
    camera_->record.orthographic = miFALSE;
}

void CameraBuilder::focalInfinity()
{
    camera_->record.focal = 1.0f;
    camera_->record.orthographic = miTRUE;
}

void CameraBuilder::aperture(const Statement& width)
{
    width.expect({1});
    camera_->record.aperture = width.positive(0);
}

void CameraBuilder::aspect(const Statement& ratio)
{
    ratio.expect({1});
    camera_->record.aspect = ratio.positive(0);
}

void CameraBuilder::resolution(const Statement& size)
{
    size.expect({2});
    camera_->record.x_resolution = size.integer(0, 1, std::numeric_limits<int>::max());
    camera_->record.y_resolution = size.integer(1, 1, std::numeric_limits<int>::max());
}

void CameraBuilder::offset(const Statement& pixels)
{
    pixels.expect({2});
    camera_->record.x_offset = pixels.real(0);
    camera_->record.y_offset = pixels.real(1);
}

void CameraBuilder::window(const Statement& corners)
{
    corners.expect({4});
    camera_->record.window = {corners.integer(0), corners.integer(1), corners.integer(2), corners.integer(3)};
    camera_->hasWindow = true;
}

void CameraBuilder::clip(const Statement& distances)
{
    distances.expect({2});
    camera_->record.clip = {distances.real(0), distances.real(1)};
}

void CameraBuilder::frame(const Statement& numbers)
{
    numbers.expect({1, 2});
    camera_->record.frame = numbers.integer(0);
    camera_->record.frame_time = numbers.size() == 2 ? numbers.real(1) : 0.0f;
}

void CameraBuilder::field(const Statement& number)
{
    number.expect({1});
    camera_->record.frame_field = number.integer(0, 0, 2);
}

void CameraBuilder::append(ShaderList& list, std::vector<ShaderUse> uses)
{
    if (uses.empty())
        list.clear();
    const ShaderList more = shaders_.make(std::move(uses));
    list.insert(list.end(), more.begin(), more.end());
}

void CameraBuilder::output(const Name& dataType, const Name& format, const Name& file)
{
    Output output = std::exchange(output_, {});
    output.dataType = dataType.text;
    output.format = format.text;
    output.file = expanded(file);
    output.where = dataType.text.empty() ? format.where : dataType.where;
    camera_->outputs.push_back(std::move(output));
}

void CameraBuilder::framebuffer(const Name& name)
{
    Output output = std::exchange(output_, {});
    output.where = name.where;
    const bool ofShaders = std::exchange(user_, false);
    if (ofShaders)
        return context_.ignored(name.where, "the frame buffers of shaders");
    if (output.file.empty())
        return;
    if (output.format.empty()) {
        const std::string extension = std::filesystem::path(output.file).extension().string();
        if (extension.size() < 2)
            throw Error(name.where, "frame buffer " + inQuotes(name.text) +
                                        " has neither a \"filetype\" nor a file with an extension");
        output.format = extension.substr(1);
    }
    camera_->outputs.push_back(std::move(output));
}

void CameraBuilder::quality(const Statement& number)
{
    number.expect({1});
    output_.quality = number.integer(0, 0, 100);
}

} // namespace host::language
