// The QCA back-end's driver requests as the layers below it need them: what
// each carries in and out, and the byte order of the station table and the
// WDS command. Handed over with the seams where they are installed.
#pragma once
#include "platform/driver_requests.h"

extern const lynd::DriverRequests qca_driver_requests;
