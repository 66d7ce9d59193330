// SPDX-License-Identifier: MIT
// Loading the form from the service's settings.
#pragma once

/// Fetches the state document, keeps its two members and shows them: every field, the receivers,
/// the header's title, and through `render_state` the status pages. The form is clean afterwards.
/// When the status of the reply is not 200, nothing changes and nothing is reported. Throws the
/// JSON library's error when the document breaks the contract; blocks for the request and for
/// asking the login manager.
void load_form();
