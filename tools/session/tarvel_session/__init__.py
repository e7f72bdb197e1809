"""Sessions with a verdict: the reader of session files, and what plays them."""
