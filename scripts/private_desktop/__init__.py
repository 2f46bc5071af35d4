"""What scripts/desktop is made of: session starts and ends it, parts are what stands in it."""
