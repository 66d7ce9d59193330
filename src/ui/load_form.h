// SPDX-License-Identifier: MIT
// From the service's settings to the form.
#pragma once

/// Fetches the state document, keeps its two members and shows them: every field, the receivers,
/// the header's title, and through `render_state` the status pages. The form is clean afterwards.
/// Without a good answer nothing changes and nothing is said. Throws the JSON library's error when
/// the document breaks the contract; blocks for the request and for asking the login manager.
void load_form();
