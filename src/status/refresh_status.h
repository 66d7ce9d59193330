// SPDX-License-Identifier: MIT
// Brings what the window shows of the station's state up to date.
#pragma once

/// Asks the service for the state document, keeps its status and draws it. When the service does
/// not answer, the header line says so and nothing else changes. Blocks for up to two seconds per
/// read or write. Throws the JSON library's error when the document breaks the contract.
void refresh_status();

/// Redraws, in this order, the header line, the Overview page with its listeners and the Internet
/// page's status lines, writing only what differs from what is shown. An error of the JSON library
/// stops it where the document is broken: the rest keeps its old content.
void render_state();
