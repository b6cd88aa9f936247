#pragma once

/**
 * @file
 * The version of the library and of the programs beside it, by Semantic Versioning 2.0.0.
 *
 * It stands here only; the build reads these lines. While the major version is 0, every minor
 * version may differ in its interface.
 */

#define ZELMAIN_VERSION_MAJOR 0
#define ZELMAIN_VERSION_MINOR 1
#define ZELMAIN_VERSION_PATCH 0
