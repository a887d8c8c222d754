// SPDX-License-Identifier: BSD-3-Clause
// The state shaders read no parameters.
#pragma once

#include "orders.h"

/// Every state shader once.
inline std::vector<Orders> stateOrders()
{
    const std::vector<Order> nothing = {{{}, ""}};
    return {
        {"vhStatePoint_v1", nothing},
        {"vhStateNormal_v1", nothing},
        {"vhStateGeometricNormal_v1", nothing},
        {"vhStateOrg_v1", nothing},
        {"vhStateDir_v1", nothing},
        {"vhStateMotion_v1", nothing},
        {"vhStateRasterPos_v1", nothing},
        {"vhStateTextureCoord_v1", nothing},
        {"vhStateRasterX_v1", nothing},
        {"vhStateRasterY_v1", nothing},
        {"vhStateRasterWidth_v1", nothing},
        {"vhStateRasterHeight_v1", nothing},
        {"vhStateDist_v1", nothing},
        {"vhStateTime_v1", nothing},
        {"vhStateDotND_v1", nothing},
        {"vhStateInvNormal_v1", nothing},
        {"vhStateReflectionLevel_v1", nothing},
        {"vhStateRefractionLevel_v1", nothing},
        {"vhStateLabel_v1", nothing},
        {"vhStateInstance_v1", nothing},
        {"vhStateRayType_v1", nothing},
        {"vhStateReflectionLevelScalar_v1", nothing},
        {"vhStateRefractionLevelScalar_v1", nothing},
        {"vhStateLabelScalar_v1", nothing},
        {"vhStateInstanceScalar_v1", nothing},
        {"vhStateRayTypeScalar_v1", nothing},
    };
}
