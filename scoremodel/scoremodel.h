// The whole public interface of scoremodel in one include.
#pragma once

// The floor: stand-ins for the platform interfaces.
#include <scoremodel/platform/Types.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CCriticalSection.h>
