"""Hypothesis runs reproducibly (derandomised) and keeps no example database,
so a test run writes nothing into the source tree."""

import os

from hypothesis import HealthCheck, settings

settings.register_profile("fixpt", derandomize=True, database=None, deadline=None, max_examples=300,
                          suppress_health_check=[HealthCheck.too_slow])
settings.load_profile(os.environ.get("HYPOTHESIS_PROFILE", "fixpt"))
